#include <QtTest>

#include "support/kyt_tool_run.h"

namespace {

QStringList trumpet_args(const QString& log, const QStringList& options) {
    return QStringList{"trumpet", graph_data(log)} + options;
}

}  // namespace

class tst_tool_trumpet : public QObject {
    Q_OBJECT
private slots:
    // The dialog's defaults (60 s, minutes 60 to 120) against figures worked
    // out independently from the same log.
    void dialog_defaults() {
        const ToolRun r = run_kyt_tool(trumpet_args("single_rate_130min.log", {}));
        QCOMPARE(r.exit_code, 0);
        const QMap<QString, QString> expected{{"interval", "60"}, {"start", "60"}, {"end", "120"},
                                              {"base_rate", "99"}, {"avg_rate", "99.05"},
                                              {"avg_error", "0.05050505050504763"}, {"insufficient_points", "false"}};
        QCOMPARE(r.values, expected);
        const QList<float> table{2.0f, 5.088281154632568f, -5.149223327636719f, 5.037398338317871f, -5.097731113433838f, 5.0f, 2.3081741333007812f, -2.3625850677490234f, 2.285092353820801f, -2.338959217071533f, 11.0f, 1.3718206882476807f, -1.3787169456481934f, 1.358102560043335f, -1.3649296760559082f, 19.0f, 0.6943115592002869f, -0.7336522936820984f, 0.6873683929443359f, -0.7263157963752747f, 31.0f, 0.31108447909355164f, -0.3018941879272461f, 0.30797362327575684f, -0.29887527227401733f};
        QCOMPARE(r.lines.size(), 5);
        QList<float> got;
        for (const QString& line : r.lines)
            for (const QString& field : line.split(' ')) got << field.toFloat();
        QCOMPARE(got, table);
    }

    void windows_data() {
        QTest::addColumn<QString>("log");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<QString>("interval");
        QTest::addColumn<QString>("base_rate");
        const QString log = "single_rate_130min.log";
        QTest::newRow("120 minutes leave one start") << log << QStringList{"--length", "120"} << "0" << "120" << "60" << "99";
        QTest::newRow("a chosen start") << log << QStringList{"--length", "60", "--start", "30"} << "30" << "90" << "60"
                                        << "99";
        QTest::newRow("a start from the dialog's own list") << log << QStringList{"--start", "0"} << "0" << "60" << "60"
                                                            << "99";
        QTest::newRow("all at 30 s") << log << QStringList{"--length", "all", "--start", "0", "--interval", "30"} << "0"
                                     << "130" << "30" << "99";
        QTest::newRow("another base rate") << log << QStringList{"--rate", "100.5"} << "60" << "120" << "60" << "100.5";
        // Between 60 and 120 minutes the dialog opens on the start that
        // exists, and the lists' own entries compute.
        QTest::newRow("80 minutes, as the dialog opens") << "single_rate_80min.log" << QStringList{} << "0" << "60"
                                                         << "60" << "25";
        QTest::newRow("80 minutes, all at 30 s") << "single_rate_80min.log"
                                                 << QStringList{"--length", "all", "--start", "0", "--interval", "30"}
                                                 << "0" << "80" << "30" << "25";
    }
    void windows() {
        QFETCH(QString, log);
        QFETCH(QStringList, options);
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(QString, interval);
        QFETCH(QString, base_rate);
        const ToolRun r = run_kyt_tool(trumpet_args(log, options));
        QCOMPARE(r.exit_code, 0);
        QCOMPARE(r.values.value("start"), start);
        QCOMPARE(r.values.value("end"), end);
        QCOMPARE(r.values.value("interval"), interval);
        QCOMPARE(r.values.value("base_rate"), base_rate);
    }

    void refusals_data() {
        QTest::addColumn<QString>("log");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<QString>("error");
        QTest::newRow("occlusion log") << "occlusion.log" << QStringList{} << 1
                                       << "Occlusion Pressure test Graph not implemented";
        QTest::newRow("under an hour") << "single_rate_45min.log" << QStringList{} << 1
                                       << "Insufficient data for Trumpet Graph";
        QTest::newRow("interval 45") << "single_rate_130min.log" << QStringList{"--interval", "45"} << 2
                                     << "kyt-tool trumpet: --interval is 30 or 60";
        QTest::newRow("length not offered") << "single_rate_130min.log" << QStringList{"--length", "90"} << 2
                                            << "kyt-tool trumpet: --length is one of 60 120 All";
        QTest::newRow("start not offered") << "single_rate_130min.log" << QStringList{"--start", "45"} << 2
                                           << "kyt-tool trumpet: --start is one of 0 30 60 with this length";
        QTest::newRow("start with all") << "single_rate_130min.log" << QStringList{"--length", "all", "--start", "30"}
                                        << 2 << "kyt-tool trumpet: --start is 0 with this length";
        QTest::newRow("rate 0") << "single_rate_130min.log" << QStringList{"--rate", "0"} << 2
                                << "kyt-tool trumpet: --rate takes a number other than 0";
    }
    void refusals() {
        QFETCH(QString, log);
        QFETCH(QStringList, options);
        QFETCH(int, exit_code);
        QFETCH(QString, error);
        const ToolRun r = run_kyt_tool(trumpet_args(log, options));
        QCOMPARE(r.exit_code, exit_code);
        QCOMPARE(r.error.split('\n').first(), error);
        QVERIFY(r.values.isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_tool_trumpet)
#include "tst_tool_trumpet.moc"
