// Whole captures through the report form's tick handler in the cases the
// simulator runs of tst_download_e2e cannot bring about.

#include <QtTest>

#include <QPlainTextEdit>
#include <QPushButton>

#include "common/file_text.h"
#include "common/forms.h"
#include "reports/capture.h"
#include "reports/frmReports.h"
#include "support/form_script.h"
#include "support/test_data.h"
#include "support/test_services.h"

using namespace kyt;

class tst_reports_capture : public QObject {
    Q_OBJECT
private slots:
    void whole_capture_data() {
        QTest::addColumn<QByteArray>("stale");  // waiting in the port when the form loads
        QTest::addColumn<QString>("chosen");    // "": the save folder is writable; else the name picked instead
        // An error reply left in the port must not be read as part of this capture.
        QTest::newRow("stale input dropped at load") << QByteArray("e\r") << "";
        QTest::newRow("unwritable folder, name chosen") << QByteArray() << "chosen.sum";
    }
    void whole_capture() {
        QFETCH(QByteArray, stale);
        QFETCH(QString, chosen);
        auto t = test::install_test_services();
        QTemporaryDir home;
        const QString unwritable = home.path() + "/no-such-folder";
        SharedState& s = shared();
        s.dirs.save_dir = (chosen.isEmpty() ? home.path() : unwritable).toStdString();
        s.run.download_mode = '1';
        s.port.channel = 'B';
        if (!chosen.isEmpty()) t.dialogs->queue(home.filePath(chosen).toStdString());
        t.serial->set_port_open(true);
        t.serial->feed(stale.toStdString());
        t.boxes->expect(chosen.isEmpty() ? 0 : 1);
        const long readings_before = t.clock->readings();

        forms::unload<frmReports>();
        test::flush_deletes();
        auto* form = forms::get<frmReports>();
        if (!stale.isEmpty()) QVERIFY2(t.clock->readings() > readings_before, "the drain did not wait");
        const CaptureSetup setup{true, '1', {"Acme", "VX", "SN-1", "C42", "ICU", "W3", "100", "250", "ok", "JD", "LVP", "5"}};
        form->prepare_capture(setup);
        s.run.report_pending = true;
        form->show_as_capture_panel();
        auto* cmdPrint = form->findChild<QPushButton*>("cmdPrint");
        QVERIFY(!cmdPrint->isEnabled());

        // The core's file of the same ticks is the one expected.
        const std::string text = test_data("logs/analyser_summary.txt");
        Capture core(setup);
        std::string expected;
        for (std::size_t i = 0; i < text.size(); i += 64) {
            t.serial->feed(text.substr(i, 64));
            form->GetDataTimer_Timer();
            if (const CaptureTick k = core.tick(text.substr(i, 64)); k.ended) expected = k.tempfile_text;
        }
        test::flush_deletes();

        QCOMPARE(t.boxes->shown.size(), std::size_t(chosen.isEmpty() ? 0 : 1));
        if (!chosen.isEmpty()) QVERIFY(t.boxes->shown[0].text.starts_with("Bad report file name"));
        QVERIFY(forms::is_loaded<frmReports>() && !form->GetDataTimer.isActive());
        const QString written = chosen.isEmpty() ? home.filePath("tempfile.dat") : home.filePath(chosen);
        QCOMPARE(read_text_file(written.toStdString()).value_or("(none)"), expected);
        QVERIFY(cmdPrint->isEnabled() && !s.run.report_pending && !QFileInfo::exists(unwritable));
        QCOMPARE(form->findChild<QPlainTextEdit*>("txtData")->toPlainText().toStdString(),
                 std::string(end_of_download_text));
        // A name picked instead becomes the save folder, stored for the next start.
        if (!chosen.isEmpty()) {
            QCOMPARE(QString::fromStdString(s.dirs.save_dir), home.path());
            QCOMPARE(QString::fromStdString(t.settings->get_setting("kyt", "startup", "savedir", "")), home.path());
        }
        forms::unload<frmReports>();
        test::flush_deletes();
    }
};

QTEST_MAIN(tst_reports_capture)
#include "tst_reports_capture.moc"
