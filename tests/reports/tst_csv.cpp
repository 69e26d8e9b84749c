#include <QtTest>

#include "common/text.h"
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
    void commas_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");
        QTest::newRow("data row") << "         01:02:03  9.999   99.50    0.833     12.5"
                                  << ",        01,02,03, 9.999,  99.50,   0.833,    12.5";
        QTest::newRow("empty") << "" << "";
        QTest::newRow("blanks only") << "    " << ",   ";
        QTest::newRow("a colon keeps the run of blanks going") << " : x" << ",, x";
        QTest::newRow("any other character ends the run") << " a b" << ",a,b";
    }
    void commas() {
        QFETCH(QString, line);
        QFETCH(QString, expected);
        QCOMPARE(QString::fromStdString(time_colons_to_commas(line.toStdString())), expected);
    }

    void conversion_data() {
        QTest::addColumn<QString>("log");
        QTest::addColumn<bool>("complete");
        QTest::addColumn<QString>("csv");
        const QString head = QString::fromStdString(log_head_lines());
        const QString cut_head = QString::fromStdString(log_head_lines().substr(0, log_head_lines().size() - 110));
        const QString top = cut_head + ",\r\n\r\n" + QString::fromStdString(headings);
        QTest::newRow("the cut takes the headings, their blank and TEST") << head + "END OF DATA\r\n" << true
                                                                          << top + "\r\n\r\n";
        QTest::newRow("page break and its five lines leave no trace")
            << head + " 00:00:01  1\r\n\f\r\n\r\n p. 02\r\n\r\n Elasped\r\n (mmHg)\r\n 00:00:02  2\r\n"
                      "         END OF DATA\r\nPumpType\r\n\r\nTechnician"
            << true << top + ",00,00,01, 1\r\n,00,00,02, 2\r\n\r\n\r\nPumpType\r\n\r\nTechnician\r\n";
        QTest::newRow("a blank line becomes a comma and blanks") << head + "   \r\nEND OF DATA" << true
                                                                  << top + ",  \r\n\r\n\r\n";
        QTest::newRow("no end mark: the rows so far") << head + " 00:00:01  1\r\n" << false
                                                      << top + ",00,00,01, 1\r\n";
        QTest::newRow("page break at the end stops at the end") << head + "\f\r\n\r\n" << false << top;
        QTest::newRow("no (mmHg): nothing at all") << "LOG\r\nEND OF DATA\r\n" << false << "";
        QTest::newRow("a head shorter than the cut")
            << "(mmHg)\r\n1:2\r\nEND OF DATA" << true << ",\r\n\r\n" + QString::fromStdString(headings) + "1,2\r\n\r\n\r\n";
    }
    void conversion() {
        QFETCH(QString, log);
        QFETCH(bool, complete);
        QFETCH(QString, csv);
        const CsvText r = convert_log_text(log.toStdString());
        QCOMPARE(r.complete, complete);
        QCOMPARE(QString::fromStdString(r.csv), csv);
    }

    void files_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("content");
        QTest::addColumn<int>("outcome");
        QTest::addColumn<QString>("target");
        const int converted = int(CsvOutcome::converted), bad = int(CsvOutcome::bad_extension),
                  cannot = int(CsvOutcome::cannot_open), no_end = int(CsvOutcome::no_end_mark);
        QTest::newRow("log") << "a.log" << "good" << converted << "a.CSV";
        QTest::newRow("blanks around the name") << "  b.log  " << "good" << converted << "b.CSV";
        QTest::newRow("upper-case extension refused") << "c.LOG" << "good" << bad << "";
        QTest::newRow("missing log") << "e.log" << "" << cannot << "e.CSV";
        QTest::newRow("no end mark") << "f.log" << "no end" << no_end << "f.CSV";
        QTest::newRow("a folder where the target goes") << "i.log" << "good, folder target" << cannot << "i.CSV";
    }
    void files() {
        QFETCH(QString, name);
        QFETCH(QString, content);
        QFETCH(int, outcome);
        QFETCH(QString, target);
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const std::string folder = dir.path().toStdString() + "/";
        const std::string log = test_data("logs/single_rate.log");
        const std::string file = folder + trim(name.toStdString());
        if (content.startsWith("good")) QVERIFY(write_text_file(file, log));
        if (content.endsWith("folder target")) QVERIFY(QDir(dir.path()).mkdir(target));
        if (content == "no end") QVERIFY(write_text_file(file, log.substr(0, log.find("END OF DATA"))));

        // Blanks around the name stand around the whole path.
        const std::string given = name.startsWith(' ') ? "  " + file + "  " : file;
        const CsvResult r = convert_log_to_csv(given);
        QCOMPARE(int(r.outcome), outcome);
        QCOMPARE(QString::fromStdString(r.target), target.isEmpty() ? QString() : dir.filePath(target));
        const auto written = read_text_file(folder + target.toStdString());
        if (outcome == int(CsvOutcome::converted)) QCOMPARE(*written, test_data("reports/single_rate.CSV"));
        if (outcome == int(CsvOutcome::no_end_mark)) QCOMPARE(*written, convert_log_text(*read_text_file(file)).csv);
        if (outcome == int(CsvOutcome::bad_extension) || outcome == int(CsvOutcome::cannot_open))
            QVERIFY(!written);
    }

    // kyt-tool csv: a line for each log, and the exit code of the worst.
    void tool_data() {
        QTest::addColumn<QStringList>("logs");
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("one log") << QStringList{"good.log"} << 0 << QStringList{"Successful conversion"};
        QTest::newRow("one of three fails")
            << QStringList{"good.log", "cut.log", "good.LOG"} << 1
            << QStringList{"Successful conversion",
                           "Unsuccessful conversion, please try again or check the help screens for further assistance",
                           "Invalid Extension - Please select a valid log file with a \".log\" extension"};
        QTest::newRow("missing log") << QStringList{"none.log"} << 1 << QStringList{"Unable to open file"};
        QTest::newRow("nothing to convert") << QStringList{} << 2 << QStringList{};
    }
    void tool() {
        QFETCH(QStringList, logs);
        QFETCH(int, exit_code);
        QFETCH(QStringList, messages);
        QTemporaryDir dir;
        const std::string log = test_data("logs/single_rate.log");
        for (const char* name : {"good.log", "good.LOG"}) QVERIFY(write_text_file(dir.filePath(name).toStdString(), log));
        QVERIFY(write_text_file(dir.filePath("cut.log").toStdString(), log.substr(0, log.size() / 2)));
        QStringList paths;
        for (const QString& l : logs) paths << dir.filePath(l);
        const ToolRun r = run_kyt_tool(QStringList{"csv"} + paths);
        QCOMPARE(r.exit_code, exit_code);
        QMap<QString, QString> expected;
        for (int i = 0; i < messages.size(); ++i) expected.insert(paths[i], messages[i]);
        QCOMPARE(r.values, expected);
        if (logs.contains("good.log"))
            QCOMPARE(read_text_file(dir.filePath("good.CSV").toStdString()).value_or(""), test_data("reports/single_rate.CSV"));
    }
};

QTEST_APPLESS_MAIN(tst_csv)
#include "tst_csv.moc"
