#include <QtTest>

#include "graph/graph_view.h"

using namespace kyt;

namespace {

// Records every half minute for the given number of minutes.
std::vector<double> half_minutes(double minutes) {
    std::vector<double> t;
    for (double m = 0; m <= minutes + 1e-9; m += 0.5) t.push_back(m);
    return t;
}

QString state_of(const TimeWindow& w) {
    return QString("%1-%2 span %3 last %4 %5%6%7%8")
        .arg(w.x_min).arg(w.x_max).arg(w.span).arg(w.last_point)
        .arg(w.later_enabled ? ">" : ".").arg(w.earlier_enabled ? "<" : ".")
        .arg(w.longer_enabled ? "+" : ".").arg(w.shorter_enabled ? "-" : ".");
}

}  // namespace

class tst_graph_view : public QObject {
    Q_OBJECT
private slots:
    void opening_view() {
        QCOMPARE(opening_last_point(half_minutes(60)), 20);  // points at 0 to 9.5 minutes
        QCOMPARE(opening_last_point(half_minutes(5)), 9);    // a short log: the search stops below the last index
        QCOMPARE(opening_last_point({}), 0);
    }

    void arrows_data() {
        QTest::addColumn<double>("minutes");    // length of the log
        QTest::addColumn<QString>("presses");   // ">" later, "<" earlier, "+" longer, "-" shorter
        QTest::addColumn<QString>("state");
        QTest::newRow("later to the end") << 25.0 << ">>" << "20-30 span 10 last 51 .<+.";
        QTest::newRow("earlier stops at 0 and keeps the span") << 60.0 << ">+-<<" << "0-10 span 10 last 22 >.+.";
        QTest::newRow("four times longer: one step left") << 120.0 << "++++" << "0-50 span 50 last 102 >.+-";
        QTest::newRow("five times longer: 60, and no further") << 120.0 << "+++++" << "0-60 span 60 last 122 >..-";
        QTest::newRow("shorter once back from 60") << 120.0 << "+++++-" << "0-50 span 50 last 102 >.+-";
        QTest::newRow("a short log: later stays on until pressed") << 5.0 << ">" << "10-20 span 10 last 11 .<+.";
    }
    void arrows() {
        QFETCH(double, minutes);
        QFETCH(QString, presses);
        QFETCH(QString, state);
        const std::vector<double> time = half_minutes(minutes);
        TimeWindow w;
        for (QChar p : presses) {
            if (p == '>') w.later(time);
            if (p == '<') w.earlier(time);
            if (p == '+') w.longer(time);
            if (p == '-') w.shorter(time);
        }
        QCOMPARE(state_of(w), state);
    }

    void flow_scale_cycle_data() {
        QTest::addColumn<double>("base_rate");
        QTest::addColumn<int>("state");
        QTest::addColumn<QStringList>("scales");  // four presses from `state`
        QTest::newRow("b = 100 from the start")
            << 100.0 << 1
            << QStringList{"80..120 Base Rate, +/-20%", "50..150 Base Rate, +/-50%", "0..200 Base Rate, +/-100%",
                           "70..130 Average Flow, Centered, Fitted"};
        QTest::newRow("b rounds half to even") << 12.5 << 3
                                               << QStringList{"0..24 Base Rate, +/-100%",
                                                              "-106..130 Average Flow, Centered, Fitted",
                                                              "10..14 Base Rate, +/-20%", "6..18 Base Rate, +/-50%"};
    }
    void flow_scale_cycle() {
        QFETCH(double, base_rate);
        QFETCH(int, state);
        QFETCH(QStringList, scales);
        QStringList seen;
        for (int i = 0; i < 4; ++i) {
            const FlowScale s = next_flow_scale(state, base_rate, 130);
            seen << QString("%1..%2 %3").arg(s.min).arg(s.max).arg(QString::fromStdString(s.title));
        }
        QCOMPARE(seen, scales);
    }

    void figures() {
        LogSeries s;
        s.graph_time = {0, 0.5, 61.75};
        s.graph_avg_flow = {100, 99.876543, 101};
        s.graph_last_index = 2;
        s.max_flow = 104.5;
        s.min_flow = 96;
        s.base_rate = 100;
        const GraphInfo g = graph_info(s, "/Logs/Pump-A.LOG");
        QCOMPARE(g.caption, std::string("DATA LOG GRAPH - [ /logs/pump-a.log ]"));
        QCOMPARE(g.points + " " + g.total_time, std::string("No Pts:  3 Total Time:  61 mins"));
        QCOMPARE(g.max_flow + " " + g.min_flow + " " + g.avg_flow + " " + g.set_rate,
                 std::string("Max:  104.5 Min:  96 Avg:  99.87  100 (ml/hr)"));
        // The printed page keeps the minutes' decimals and writes the extremes in a picture.
        const std::vector<std::string> page = graph_print_lines(s, "/Logs/Pump-A.LOG");
        QCOMPARE(QString::fromStdString(page[0] + "|" + page[1] + "|" + page[2] + "|" + page[3]),
                 "Average flow rate:  99.87 ml/hr  Total time:  61.75 mins|Maximum flow rate:  104.50 ml/hr Number of Points:  3|"
                 "Minimum flow rate:  96.00 ml/hr |File name:  /logs/pump-a.log");
    }

    void image_suffix() {
        QCOMPARE(graph_image_suffix("chart.wmf"), std::string("WMF"));
        QCOMPARE(graph_image_suffix("graph"), std::string("GRA"));          // no dot: the name's first three
        QCOMPARE(graph_image_suffix("/logs.v2/g.bmp"), std::string("V2/"));  // the first dot counts
    }
};

QTEST_MAIN(tst_graph_view)
#include "tst_graph_view.moc"
