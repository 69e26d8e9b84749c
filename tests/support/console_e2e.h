#pragma once
// The console as the end-to-end tests run it: the main window on a real
// serial line whose Comm 1 is the simulated analyser, saving into a folder
// of its own, and the modal test header answered once it is up.

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "acquisition/frmHeader.h"
#include "app/frmMain.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "link/qt_serial_line.h"
#include "support/analyser_sim.h"
#include "support/test_services.h"

namespace kyt::test {

struct Console {
    TestServices t;
    QTemporaryDir work;
};

// The console on a real line to the simulator behind Comm 1, saving into a
// folder of its own.
inline void start_console(Console& c, const Sim& sim) {
    c.t = install_test_services();
    c.t.settings->save_setting("kyt", "Ports", "comm1", ss(sim.link));
    for (const char* key : {"comm2", "comm3", "comm4"})
        c.t.settings->save_setting("kyt", "Ports", key, "/nonexistent/kyt-port");
    c.t.settings->save_setting("kyt", "Startup", "comm", "1");
    c.t.settings->save_setting("kyt", "Startup", "savedir", ss(c.work.path()));
    services().serial = std::make_unique<QtSerialLine>(*c.t.settings);
    forms::get<frmMain>();
}

template <class W>
W* child(QWidget* form, const char* name) {
    return form->findChild<W*>(name);
}

// Fills the modal header once it is up (the set rate too, which a
// single-rate test needs) and goes on.
inline void fill_header_when_shown() {
    QTimer::singleShot(0, [] {
        frmHeader* h = forms::loaded<frmHeader>();
        QVERIFY(h);
        child<QComboBox>(h, "cmbHdr_0")->setEditText("Acme Pumps");
        child<QComboBox>(h, "cmbHdr_3")->setEditText("Volumat X");
        child<QLineEdit>(h, "txtSerialNo")->setText("SN-1");
        child<QComboBox>(h, "cmbHdr_2")->setEditText("J. Doe");
        child<QComboBox>(h, "cmbHdr_4")->setEditText("100");
        child<QPushButton>(h, "cmdContinue")->click();
    });
}

}  // namespace kyt::test
