#include <QtTest>

#include "common/file_text.h"
#include "support/test_data.h"

using namespace kyt;

namespace {

struct ToolRun {
    int exit_code = -1;
    QStringList lines;
};

ToolRun run_tool(const QStringList& args) {
    QProcess p;
    p.start(qEnvironmentVariable("KYT_BINARY_DIR") + "/tools/kyt-tool/kyt-tool", QStringList{"csv"} + args);
    ToolRun r;
    if (!p.waitForFinished(30000) || p.exitStatus() != QProcess::NormalExit) return r;
    r.exit_code = p.exitCode();
    r.lines = QString::fromLocal8Bit(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    return r;
}


}  // namespace

class tst_kyt_tool_csv : public QObject {
    Q_OBJECT
private slots:
    void runs_data() {
        QTest::addColumn<QStringList>("logs");
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("one log") << QStringList{"good.log"} << 0 << QStringList{"Successful conversion"};
        QTest::newRow("two logs") << QStringList{"good.log", "also.log"} << 0
                                  << QStringList{"Successful conversion", "Successful conversion"};
        QTest::newRow("one of three fails")
            << QStringList{"good.log", "cut.log", "good.LOG"} << 1
            << QStringList{"Successful conversion",
                           "Unsuccessful conversion, please try again or check the help screens for further assistance",
                           "Invalid Extension - Please select a valid log file with a \".log\" extension"};
        QTest::newRow("missing log") << QStringList{"none.log"} << 1 << QStringList{"Unable to open file"};
        QTest::newRow("nothing to convert") << QStringList{} << 2 << QStringList{};
    }
    void runs() {
        QFETCH(QStringList, logs);
        QFETCH(int, exit_code);
        QFETCH(QStringList, messages);
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const std::string log = test_data("logs/single_rate.log");
        QVERIFY(!log.empty());
        for (const char* name : {"good.log", "also.log", "good.LOG"})
            QVERIFY(write_text_file(dir.filePath(name).toStdString(), log));
        QVERIFY(write_text_file(dir.filePath("cut.log").toStdString(), log.substr(0, log.size() / 2)));

        QStringList paths;
        for (const QString& l : logs) paths << dir.filePath(l);
        const ToolRun r = run_tool(paths);
        QCOMPARE(r.exit_code, exit_code);
        QStringList expected;
        for (int i = 0; i < messages.size(); ++i) expected << paths[i] + ": " + messages[i];
        QCOMPARE(r.lines, expected);
        if (logs.contains("good.log"))
            QCOMPARE(read_text_file(dir.filePath("good.CSV").toStdString()).value_or(""),
                     test_data("reports/single_rate.CSV"));
    }
};

QTEST_APPLESS_MAIN(tst_kyt_tool_csv)
#include "tst_kyt_tool_csv.moc"
