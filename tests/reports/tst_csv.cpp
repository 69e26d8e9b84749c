#include <QtTest>

#include "reports/csv_convert.h"
#include "common/file_text.h"
#include "support/kyt_tool_run.h"
#include "support/test_data.h"

using namespace kyt;

namespace {

// The head of a single-rate log as the console writes it, through line 31.
std::string log_head_lines() {
    const std::string log = test_data("logs/single_rate.log");
    return log.substr(0, log.find("(mmHg)\r\n") + 8);
}

const std::string headings = ",,Elasped,,Flow,Avg Flow,Volume,B.Pres\r\n,,Time,,(ml/h),(ml/h),(ml),(mmHg)\r\n";

}  // namespace

class tst_csv : public QObject {
    Q_OBJECT
private slots:
    void conversion_data() {
        QTest::addColumn<QString>("log");
        QTest::addColumn<bool>("complete");
        QTest::addColumn<QString>("csv");
        const QString head = QString::fromStdString(log_head_lines());
        const QString cut_head = QString::fromStdString(log_head_lines().substr(0, log_head_lines().size() - 110));
        const QString top = cut_head + ",\r\n\r\n" + QString::fromStdString(headings);
        QTest::newRow("page break and its five lines leave no trace")
            << head + " 00:00:01  1\r\n\f\r\n\r\n p. 02\r\n\r\n Elasped\r\n (mmHg)\r\n 00:00:02  2\r\n"
                      "         END OF DATA\r\nPumpType\r\n\r\nTechnician"
            << true << top + ",00,00,01, 1\r\n,00,00,02, 2\r\n\r\n\r\nPumpType\r\n\r\nTechnician\r\n";
        QTest::newRow("no end mark: the rows so far") << head + " 00:00:01  1\r\n" << false
                                                      << top + ",00,00,01, 1\r\n";
        QTest::newRow("page break at the end stops at the end") << head + "\f\r\n\r\n" << false << top;
        QTest::newRow("no (mmHg): nothing at all") << "LOG\r\nEND OF DATA\r\n" << false << "";
        // A colon keeps a run of blanks going: one comma for the run.
        QTest::newRow("a head shorter than the cut, a colon among blanks")
            << "(mmHg)\r\n1 : 2\r\nEND OF DATA" << true << ",\r\n\r\n" + QString::fromStdString(headings) + "1,, 2\r\n\r\n\r\n";
    }
    void conversion() {
        QFETCH(QString, log);
        QFETCH(bool, complete);
        QFETCH(QString, csv);
        const CsvText r = convert_log_text(log.toStdString());
        QCOMPARE(r.complete, complete);
        QCOMPARE(QString::fromStdString(r.csv), csv);
    }

    // kyt-tool csv converts each log as the console does: a line for each,
    // the exit code of the worst. A log without its end still gets the rows so
    // far; a folder where the spreadsheet file goes cannot be written.
    void tool() {
        QTemporaryDir dir;
        const std::string log = test_data("logs/single_rate.log");
        for (const char* name : {"good.log", "good.LOG", "folder.log"})
            QVERIFY(write_text_file(dir.filePath(name).toStdString(), log));
        QVERIFY(write_text_file(dir.filePath("cut.log").toStdString(), log.substr(0, log.find("END OF DATA"))));
        QVERIFY(QDir(dir.path()).mkdir("folder.CSV"));
        const QStringList logs{"good.log", "cut.log", "good.LOG", "none.log", "folder.log"};
        QStringList paths;
        for (const QString& l : logs) paths << dir.filePath(l);
        const ToolRun r = run_kyt_tool(QStringList{"csv"} + paths);
        QCOMPARE(r.exit_code, 1);
        const QString unable = "Unable to open file";
        const QStringList told{"Successful conversion",
                               "Unsuccessful conversion, please try again or check the help screens for further assistance",
                               "Invalid Extension - Please select a valid log file with a \".log\" extension", unable, unable};
        for (int i = 0; i < logs.size(); ++i) QCOMPARE(r.values.value(paths[i]), told[i]);
        QCOMPARE(read_text_file(dir.filePath("good.CSV").toStdString()).value_or(""), test_data("reports/single_rate.CSV"));
        QCOMPARE(read_text_file(dir.filePath("cut.CSV").toStdString()).value_or(""),
                 convert_log_text(log.substr(0, log.find("END OF DATA"))).csv);
        QVERIFY(!QFileInfo::exists(dir.filePath("none.CSV")));
        QCOMPARE(run_kyt_tool({"csv"}).exit_code, 2);
    }
};

QTEST_APPLESS_MAIN(tst_csv)
#include "tst_csv.moc"
