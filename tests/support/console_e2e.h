#pragma once
// The console on a real line to the simulated analyser, saving into a folder of its own.

#include "acquisition/frmHeader.h"
#include "app/frmMain.h"
#include "common/file_text.h"
#include "common/qt_text.h"
#include "link/qt_serial_line.h"
#include "support/analyser_sim.h"
#include "support/form_script.h"
#include "support/test_services.h"

namespace kyt::test {

struct Console {
    TestServices t;
    QTemporaryDir work;
};

// The simulator behind Comm `comm`, the other ports on no device; Comm 2, the default, unstored.
inline void start_console(Console& c, const QString& link, int comm) {
    c.t = install_test_services();
    for (int n = 1; n <= 4; ++n)
        c.t.settings->save_setting("kyt", "Ports", "comm" + std::to_string(n),
                                   n == comm ? ss(link) : "/nonexistent/kyt-port");
    if (comm != 2) c.t.settings->save_setting("kyt", "Startup", "comm", std::to_string(comm));
    c.t.settings->save_setting("kyt", "Startup", "savedir", ss(c.work.path()));
    services().serial = std::make_unique<QtSerialLine>(*c.t.settings);
    forms::get<frmMain>();
}

// The forms unloaded, the main window last, and the line closed.
inline void close_console() {
    for (const char* name : {"frmTrumpetGraph", "frmGraph", "frmOTGraph", "frmRTGraph", "frmSummary", "frmReports",
                             "frmTestPort", "frmDownload", "frmMain"})
        forms::unload(name);
    flush_deletes();
    services().serial.reset();
}

// The console on a simulator started with the given arguments.
struct SimConsole : Console {
    Sim sim;
    explicit SimConsole(const QStringList& sim_args, int comm = 1) : sim(sim_args) {
        if (sim.ready()) start_console(*this, sim.link, comm);
    }
};

template <class W>
W* child(QWidget* form, const char* name) {
    return form->findChild<W*>(name);
}

inline std::string text_of(const QString& path) { return read_text_file(ss(path)).value_or(""); }

// Fills the modal header once it is up (the set rate too) and goes on.
inline void fill_header_when_shown() {
    QTimer::singleShot(0, [] {
        frmHeader* h = forms::loaded<frmHeader>();
        QVERIFY(h);
        child<QComboBox>(h, "cmbHdr_0")->setEditText("Acme Pumps");
        child<QComboBox>(h, "cmbHdr_3")->setEditText("Model X");
        child<QLineEdit>(h, "txtSerialNo")->setText("SN-1");
        child<QComboBox>(h, "cmbHdr_2")->setEditText("J. Doe");
        child<QComboBox>(h, "cmbHdr_4")->setEditText("100");
        child<QPushButton>(h, "cmdContinue")->click();
    });
}

}  // namespace kyt::test
