// Downloads from the main window over a real serial line to the simulated analyser.

#include <QtTest>

#include <QCheckBox>
#include <QPlainTextEdit>
#include <QRadioButton>

#include "acquisition/frmDownload.h"
#include "app/form_registry.h"
#include "common/text.h"
#include "link/protocol.h"
#include "reports/capture.h"
#include "reports/frmReports.h"
#include "support/console_e2e.h"

using namespace kyt;
using namespace kyt::test;

namespace {

QString shown(frmReports* r) { return child<QPlainTextEdit>(r, "txtData")->toPlainText(); }

// OK in the dialog; with a `target`, saved there with the header filled in.
frmReports* download(Console& c, char channel, const char* mode, const QString& target = {}) {
    if (!target.isEmpty()) {
        c.t.dialogs->queue(ss(target));
        fill_header_when_shown();
    }
    frmDownload* d = forms::get<frmDownload>();
    d->show();
    child<QRadioButton>(d, qPrintable(QString("optChannel") + channel))->setChecked(true);
    child<QRadioButton>(d, mode)->setChecked(true);
    child<QCheckBox>(d, "chkSaveFile")->setChecked(!target.isEmpty());
    child<QPushButton>(d, "CmdOK")->click();
    return forms::loaded<frmReports>();
}

// The same, saved once the capture screen shows its end; false when it never did.
bool save_download(Console& c, char channel, const char* mode, const QString& target, int wait_ms = 20000) {
    frmReports* r = download(c, channel, mode, target);
    if (!r || !QTest::qWaitFor([&] { return shown(r).contains("End Of Download"); }, wait_ms)) return false;
    child<QPushButton>(r, "cmdSave")->click();
    flush_deletes();
    return true;
}

// A saved download less its test-date line, which two simulators may date apart.
std::string saved_download(const char* mode, const QStringList& sim_args) {
    SimConsole c(sim_args);
    if (!c.sim.ready()) return "no simulator";
    const QString target = c.work.filePath("saved");
    std::string text = save_download(c, 'A', mode, target) ? text_of(target) : "no end";
    close_console();
    if (const std::size_t date = text.find("Test Date:"); date != std::string::npos)
        text.erase(date, text.find(CR, date) - date);
    return text;
}

}  // namespace

class tst_download_e2e : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { register_all_forms(); }
    void cleanup() { close_console(); }

    // Saved with the header in place; a split, damaged line gives the same bytes.
    void saved_with_header_data() {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("kind");
        QTest::newRow("summary") << "optGetSummary" << "SUMMARY";
        QTest::newRow("data log") << "optGetLog" << "END OF DATA";
    }
    void saved_with_header() {
        QFETCH(QString, mode);
        QFETCH(QString, kind);
        const QByteArray m = mode.toLatin1();
        const std::string clean = saved_download(m.constData(), {"--seed", "3"});
        QVERIFY2(clean.find(kind.toStdString()) != std::string::npos, clean.c_str());
        QVERIFY(clean.find("Acme Pumps") != std::string::npos && clean.find("SN-1") != std::string::npos);
        QVERIFY(clean.find('\a') == std::string::npos);
        QVERIFY(saved_download(m.constData(), {"--seed", "3", "--split", "--damage-line-ends"}) == clean);
    }

    // A log far longer than the capture screen holds lands whole and in order.
    void long_log_in_pages_and_converted() {
        SimConsole c({"--speed", "7200", "--seed", "6"});
        QVERIFY(c.sim.ready());
        services().serial->output(command_start_test('C', test_single_rate));
        QTest::qWait(8000);  // some sixteen hours of test on the analyser's clock
        const QString log = c.work.filePath("long.log");
        QVERIFY(save_download(c, 'C', "optGetLog", log, 60000));
        const std::string text = text_of(log);
        QVERIFY2(text.size() > 3 * capture_text_limit, qPrintable(QString::number(text.size())));
        const QRegularExpression row(R"(^ *(\d\d):(\d\d):(\d\d))", QRegularExpression::MultilineOption);
        int rows = 0, last = 0;
        for (auto m = row.globalMatch(QString::fromStdString(text)); m.hasNext();) {
            const QRegularExpressionMatch r = m.next();
            const int seconds = r.captured(1).toInt() * 3600 + r.captured(2).toInt() * 60 + r.captured(3).toInt();
            if (rows++ > 0) QCOMPARE(seconds, last + 30);
            last = seconds;
        }
        QVERIFY2(rows > 1000 && text.find("p. 21") != std::string::npos, qPrintable(QString::number(rows)));
        QVERIFY(text.find("END OF DATA") > text.rfind("p. "));

    }

    // The analyser gone mid-log: the port closed, nothing stored half, and
    // leaving the screen sends no stop, so the loss stays one message (a fault once found).
    void analyser_vanishes_mid_download() {
        SimConsole c({"--split", "--seed", "8"});
        QVERIFY(c.sim.ready());
        const QString target = c.work.filePath("cut.log");
        frmReports* r = download(c, 'A', "optGetLog", target);
        QVERIFY(r);
        QTRY_VERIFY_WITH_TIMEOUT(!shown(r).isEmpty(), 10000);
        c.t.boxes->expect();
        c.sim.stop();
        QTRY_COMPARE_WITH_TIMEOUT(c.t.boxes->shown.size(), std::size_t(1), 10000);
        QVERIFY2(c.t.boxes->shown[0].text.find("serial line") != std::string::npos, c.t.boxes->shown[0].text.c_str());
        QVERIFY(!services().serial->port_open());
        QTRY_VERIFY(!r->GetDataTimer.isActive());
        QVERIFY(!shown(r).contains("End Of Download"));
        QCOMPARE(QFileInfo(target).size(), 0);
        child<QPushButton>(r, "cmdCancel")->click();
        flush_deletes();
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QVERIFY(forms::loaded<frmMain>()->isEnabled());
    }
};

QTEST_MAIN(tst_download_e2e)
#include "tst_download_e2e.moc"
