#include <QtTest>

#include <QLabel>
#include <QPushButton>

#include "acquisition/frmDownload.h"
#include "acquisition/frmHeader.h"
#include "acquisition/logformat.h"
#include "common/file_text.h"
#include "common/forms.h"
#include "common/shared_state.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;

namespace {


QStringList texts(const auto& items, auto text_of) {
    QStringList out;
    for (const auto& i : items) out << QString::fromStdString(text_of(i));
    return out;
}

}  // namespace

class tst_download : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        // The live test screens' names, so that the dialog offers real time.
        for (const char* screen : {"frmRTGraph", "frmOTGraph"}) forms::register_factory(screen, [] { return new QWidget; });
    }

    void cleanup() {
        forms::unload<frmDownload>();
        test::flush_deletes();
        for (LogFile* f : {&run_logs().rt_file, &run_logs().ot_file}) f->close();
    }

    // OK refused, or a live run started: the Save dialogs in order, the first log's head, the start command.
    void ok_outcomes_data() {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QStringList>("names");   // answers of the Save dialogs; "" gives up
        QTest::addColumn<bool>("header");         // the header asked, a set rate typed in
        QTest::addColumn<QStringList>("titles");  // of the Save dialogs shown
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QStringList>("logs");    // each named file afterwards: "" empty, else its test's name
        const QString rt = "SAVE REAL TIME DATA";
        QTest::newRow("no mode") << QStringList{"optChannelC", "CmdOK"} << QStringList{} << false << QStringList{}
                                 << QStringList{"You must select a Channel or a Mode type."} << "" << QStringList{};
        QTest::newRow("Real-Time with neither test")
            << QStringList{"optRealTime", "CmdOK"} << QStringList{} << false << QStringList{}
            << QStringList{"You must complete the Real Time criteria."} << "" << QStringList{};
        QTest::newRow("single rate with a header (and its legend), started by hand")
            << QStringList{"optRealTime", "chkSingle", "CmdOK"} << QStringList{"a.log"} << true << QStringList{rt}
            << QStringList{"Please start Marovant and then press 'OK'"} << "GRA1\r" << QStringList{"SINGLE RATE TEST"};
        QTest::newRow("the summary given up ends the run before any head")
            << QStringList{"optRealTime", "chkSingle", "chkReport", "CmdOK"} << QStringList{"a.log", ""} << false
            << QStringList{rt, "SAVE REAL TIME DATA SUMMARY"} << QStringList{"Saving file cancelled"} << "" << QStringList{""};
        // A full disk shows only when the head is flushed.
        QTest::newRow("a head that cannot be written is asked again")
            << QStringList{"optRealTime", "chkSingle", "chkTestAuto", "CmdOK"} << QStringList{"/dev/full", "c.log"}
            << false << QStringList{rt, rt} << QStringList{"Bad file name for real-time data"} << "RTA1\r"
            << QStringList{"", "SINGLE RATE TEST"};
    }
    void ok_outcomes() {
        QFETCH(QStringList, clicks);
        QFETCH(QStringList, names);
        QFETCH(bool, header);
        QFETCH(QStringList, titles);
        QFETCH(QStringList, boxes);
        QFETCH(QString, sent);
        QFETCH(QStringList, logs);
        auto t = test::install_test_services();
        t.serial->set_port_open(true);
        QTemporaryDir work;
        const auto path = [&](const QString& name) { return name.startsWith('/') ? name : work.filePath(name); };
        for (const QString& name : names) t.dialogs->queue(name.isEmpty() ? "" : path(name).toStdString());
        shared().run.header_wanted = header;
        bool legend_shown = false;
        if (header)
            test::when_shown("frmHeader", [&](QWidget* h) {
                legend_shown = h->findChild<QLabel*>("lblMandatoryFields")->isVisible();
                h->findChild<QComboBox*>("cmbHdr_4")->setEditText("100");
                h->findChild<QPushButton*>("cmdContinue")->click();
            });
        t.boxes->expect(static_cast<std::size_t>(boxes.size()));
        frmDownload* f = test::open_fresh<frmDownload>();
        for (const QString& step : clicks) test::run_script(f, {"press:" + step});

        QCOMPARE(texts(t.dialogs->requests, [](const auto& r) { return r.dialog.title; }), titles);
        QCOMPARE(texts(t.boxes->shown, [](const auto& b) { return b.text; }), boxes);
        QCOMPARE(texts(t.serial->commands, [](const std::string& c) { return c; }).join(""), sent);
        QCOMPARE(shared().run.rt_pending, !sent.isEmpty());
        QCOMPARE(shared().run.download_ok, !sent.isEmpty());
        QCOMPARE(f->isHidden(), !sent.isEmpty());
        QCOMPARE(legend_shown, header);
        for (LogFile* file : {&run_logs().rt_file, &run_logs().ot_file}) file->close();
        for (int i = 0; i < logs.size(); ++i) {
            if (names[i].startsWith('/')) continue;  // not the full device
            const std::string text = read_text_file(path(names[i]).toStdString()).value_or("missing");
            QVERIFY2(logs[i].isEmpty() ? text.empty() : text.find(logs[i].toStdString()) != std::string::npos, text.c_str());
        }
        if (header) QVERIFY(read_text_file(path(names[0]).toStdString())->find("Set Rate(s): 100__") != std::string::npos);
    }
};

QTEST_MAIN(tst_download)
#include "tst_download.moc"
