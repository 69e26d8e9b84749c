#include <QtTest>

#include "support/kyt_tool_run.h"

class tst_tool_info : public QObject {
    Q_OBJECT
private slots:
    // The figures of the console log, worked out independently of the reader.
    void figures() {
        const ToolRun r = run_kyt_tool({"info", graph_data("single_rate_130min.log")});
        QCOMPARE(r.exit_code, 0);
        const QMap<QString, QString> expected{
            {"graph_last_index", "520"}, {"max_flow", "107.5"},     {"min_flow", "90.61"},
            {"final_avg_flow", "99.04"}, {"avg_flow_whole", "99"},  {"max_volume", "214"},
            {"flow_scale_min", "91"},    {"flow_scale_max", "108"}, {"base_rate", "99"}};
        QCOMPARE(r.values, expected);
        QVERIFY(r.lines.isEmpty());
    }

    void refusals_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<QString>("error");
        QTest::newRow("occlusion log") << QStringList{"info", graph_data("occlusion.log")} << 1
                                       << "Occlusion Pressure test Graph not implemented";
        QTest::newRow("missing file") << QStringList{"info", graph_data("none.log")} << 1
                                      << "Error opening LOG file for graphing, graphing cancelled";
        QTest::newRow("no log named") << QStringList{"info"} << 2 << "usage: kyt-tool info LOG";
    }
    void refusals() {
        QFETCH(QStringList, args);
        QFETCH(int, exit_code);
        QFETCH(QString, error);
        const ToolRun r = run_kyt_tool(args);
        QCOMPARE(r.exit_code, exit_code);
        QCOMPARE(r.error, error);
        QVERIFY(r.values.isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_tool_info)
#include "tst_tool_info.moc"
