// The log reader and the graph view's rules, without a widget.
#include <QtTest>

#include <string>
#include <vector>

#include "common/numbers.h"
#include "graph/graph_view.h"
#include "graph/log_reader.h"

using namespace kyt;

namespace {

// The head of a single-rate log as the console writes it, up to the column heads.
const std::string head =
    "\r\n\r\n" + std::string(67, ' ') + "p. 01\r\n\r\n" + std::string(33, ' ') + "MAROVANT 4500-K\r\n" +
    std::string(31, ' ') + "Corvane Systems Inc.\r\n\r\n" + std::string(9, ' ') + "SINGLE RATE TEST\r\n\r\n" +
    std::string(9, ' ') + "Elapsed   Flow  Avg Flow  Volume  B.Pres\r\n" + std::string(9, ' ') +
    "  Time    (ml/h)  (ml/h)    (ml)  (mmHg)\r\n";

const std::string end_block = "\r\n         END OF DATA\r\n\r\n";

std::string row(const std::string& time, const std::string& flow, const std::string& avg, const std::string& vol,
                const std::string& pres) {
    return "         " + time + "  " + flow + "   " + avg + "    " + vol + "     " + pres + "\r\n";
}

// n ordinary rows, a minute apart, at 100 ml/h.
std::string rows(int n, int first_minute = 0) {
    std::string s;
    for (int i = 0; i < n; ++i) {
        const int m = first_minute + i;
        s += row(QString::asprintf("%02d:%02d:00", m / 60, m % 60).toStdString(), "100.0", i == 0 ? "0.000" : "100.0",
                 format_picture(m * 100.0 / 60, m < 6 ? "0.000" : "00.00"), "12");
    }
    return s;
}

std::string log_of(const std::string& body) { return head + body + end_block; }

std::vector<double> half_minutes(double minutes) {
    std::vector<double> t;
    for (double m = 0; m <= minutes + 1e-9; m += 0.5) t.push_back(m);
    return t;
}

}  // namespace

class tst_log_reader : public QObject {
    Q_OBJECT
private slots:
    // An accepted log: the first record's minutes (truncated), the last index counted, the final average read.
    void accepted_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("read");
        const auto first = [](const char* time) {
            return QString::fromStdString(log_of(row(time, "1.000", "1.000", "1.000", "1") + rows(3, 1)));
        };
        QTest::newRow("ten seconds truncate, not round") << first("00:00:10") << "0.16 3 100";
        QTest::newRow("short seconds field") << first("00:00:1") << "0.01 3 100";
        QTest::newRow("letters read as zero") << first("ab:01:xx") << "1 3 100";
        const QString crlf = QString::fromStdString(log_of(rows(4)));
        QTest::newRow("LF alone") << QString(crlf).replace("\r\n", "\n") << "0 3 100";
        QTest::newRow("CR alone") << QString(crlf).replace("\r\n", "\r") << "0 3 100";
        QTest::newRow("records after the end") << QString::fromStdString(log_of(rows(4)) + rows(2, 10)) << "0 5 0";
        QTest::newRow("character 7 ends the reading") << QString::fromStdString(head + rows(4) + "\x07\r\n" + rows(1, 10))
                                                      << "0 4 0";
    }
    void accepted() {
        QFETCH(QString, text);
        QFETCH(QString, read);
        const LogReadResult r = read_log(text.toStdString());
        QVERIFY2(r.accepted(), r.message ? r.message->text.c_str() : "");
        QCOMPARE(QString("%1 %2 %3").arg(r.series.graph_time[0]).arg(r.series.graph_last_index).arg(r.series.final_avg_flow),
                 read);
    }

    // The box of a refused log, whether the file counts as readable, and the last record index counted.
    void refused_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("file");
        const auto log = [](const std::string& text) { return QString::fromStdString(text); };
        const QString range = "ERROR 16: Value out of range in line %1; graphing cancelled";
        QTest::newRow("occlusion") << log(head + "         OCCLUSION PRESSURE TEST\r\n" + rows(5) + end_block)
                                   << "Occlusion Data 48: Occlusion Pressure test Graph not implemented" << "unreadable -1";
        QTest::newRow("dual rate after records") << log(rows(5) + "DUAL RATE TEST\r\n" + rows(5))
                                                 << "Dual Rate Test Data 48: Dual Rate Test Graph not implemented" << "unreadable 4";
        QTest::newRow("three records") << log(log_of(rows(3))) << "Insufficient Points 48: Insufficient number of Graph Points"
                                       << "ok 2";
        QTest::newRow("no model line") << log(log_of(rows(4)).replace(head.find("MAROVANT"), 1, "N"))
                                       << "ERROR 16: Invalid Log file; possibly wrong format" << "ok 3";
        QTest::newRow("four fields") << log(log_of(rows(3) + row("00:09:00", "1.0", "1.0", "1.0", "")))
                                     << "ERROR 16: Data record with fewer than five fields in line 15; graphing cancelled" << "ok 3";
        QTest::newRow("pressure beyond 16 bits") << log(log_of(rows(3) + row("00:09:00", "1.0", "1.0", "1.0", "32767.5")))
                                                 << range.arg(15) << "ok 3";
        QTest::newRow("flow beyond a double") << log(log_of(row("00:09:00", "1E999", "1.0", "1.0", "0") + rows(3)))
                                              << range.arg(12) << "ok 3";
        QTest::newRow("final average beyond 16 bits") << log(log_of(rows(3) + row("00:09:00", "1.0", "40000", "1.0", "0")))
                                                      << "ERROR 16: Final average flow out of range; graphing cancelled" << "ok 3";
        // The record index is 16 bits: one record more than it holds is refused as an unreadable file.
        QTest::newRow("32768 records") << QString("00:00:\n").repeated(32768)
                                       << "ERROR 16: Error opening LOG file for graphing, graphing cancelled" << "unreadable 32767";
    }
    void refused() {
        QFETCH(QString, text);
        QFETCH(QString, box);
        QFETCH(QString, file);
        const LogReadResult r = read_log(text.toStdString());
        QVERIFY(!r.accepted());
        QCOMPARE(QString("%1 %2: %3 | %4 %5").arg(QString::fromStdString(r.message->title)).arg(r.message->style)
                     .arg(QString::fromStdString(r.message->text), r.graph_file_ok ? "ok" : "unreadable")
                     .arg(r.series.graph_last_index), box + " | " + file);
    }

    void four_records_are_read() {
        const LogReadResult r = read_log(log_of(row("00:00:00", "101.1", "0.000", "0.000", "12") +
                                                row("00:00:15", "102.6", "102.0", "0.425", "12.5") +
                                                row("00:00:30", "9.999", "98.5", "0.852", "13.5") +
                                                row("00:00:45", "1000", "98.5", "1.276", "-0.5")));
        QVERIFY(r.accepted());
        const LogSeries& s = r.series;
        QCOMPARE(s.graph_flow, (std::vector<double>{101.1, 102.6, 9.999, 1000}));
        QCOMPARE(s.graph_avg_flow, (std::vector<double>{0, 102.0, 98.5, 98.5}));
        QCOMPARE(s.graph_volume, (std::vector<double>{0, 0.425, 0.852, 1.276}));
        QCOMPARE(s.graph_pressure, (std::vector<std::int16_t>{12, 12, 14, 0}));  // halves to even
        // The base rate rounds the last average but one half up; the whole final average halves to even.
        QCOMPARE(QString("%1 %2 %3 %4").arg(s.base_rate).arg(s.avg_flow_whole).arg(s.final_avg_flow).arg(s.max_volume),
                 "99 98 98.5 1");
    }

    // The default flow scale is centred on the final average and wide enough for the farther extreme.
    void extremes_and_scale_data() {
        QTest::addColumn<QList<double>>("flows");
        QTest::addColumn<double>("final_avg");
        QTest::addColumn<QString>("extremes");
        QTest::newRow("up farther, above 1") << QList<double>{90, 110, 100, 95} << 99.4 << "90..110 scale 89..110";
        QTest::newRow("average exactly 1, up farther") << QList<double>{0.5, 2.0, 1.0, 1.2} << 1.0 << "0.5..2 scale 0..3";
        QTest::newRow("average exactly 1, down farther") << QList<double>{0.6, 1.3, 1.0, 1.0} << 1.0 << "0.6..1.3 scale 0..2";
        QTest::newRow("average just above 1") << QList<double>{0.6, 1.3, 1.0, 1.0} << 1.01 << "0.6..1.3 scale 1..1";
    }
    void extremes_and_scale() {
        QFETCH(QList<double>, flows);
        QFETCH(double, final_avg);
        QFETCH(QString, extremes);
        std::string body;
        for (int i = 0; i < flows.size(); ++i) {
            const std::string avg = i + 1 == flows.size() ? general_number(final_avg) : "50";
            body += row("00:0" + std::to_string(i) + ":00", general_number(flows[i]), avg, "1.0", "0");
        }
        const LogReadResult r = read_log(log_of(body));
        QVERIFY(r.accepted());
        const LogSeries& s = r.series;
        QCOMPARE(QString("%1..%2 scale %3..%4").arg(s.min_flow).arg(s.max_flow).arg(s.flow_scale_min).arg(s.flow_scale_max),
                 extremes);
    }

    // The Window arrows: ">" later, "<" earlier, "+" longer, "-" shorter.
    void arrows_data() {
        QTest::addColumn<double>("minutes");
        QTest::addColumn<QString>("presses");
        QTest::addColumn<QString>("state");
        QTest::newRow("later to the end") << 25.0 << ">>" << "20-30 span 10 last 51 .<+.";
        QTest::newRow("earlier stops at 0 and keeps the span") << 60.0 << ">+-<<" << "0-10 span 10 last 22 >.+.";
        QTest::newRow("four times longer: one step left") << 120.0 << "++++" << "0-50 span 50 last 102 >.+-";
        QTest::newRow("five times longer: 60, and no further") << 120.0 << "+++++" << "0-60 span 60 last 122 >..-";
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
        QCOMPARE(QString("%1-%2 span %3 last %4 %5%6%7%8").arg(w.x_min).arg(w.x_max).arg(w.span).arg(w.last_point)
                     .arg(w.later_enabled ? ">" : ".").arg(w.earlier_enabled ? "<" : ".")
                     .arg(w.longer_enabled ? "+" : ".").arg(w.shorter_enabled ? "-" : "."),
                 state);
    }

    // The flow scale cycles through four steps and back to the first.
    void flow_scale_cycle() {
        int state = 1;
        QStringList seen;
        for (int i = 0; i < 5; ++i) {
            const FlowScale s = next_flow_scale(state, 100, 130);
            seen << QString("%1..%2 %3").arg(s.min).arg(s.max).arg(QString::fromStdString(s.title));
        }
        QCOMPARE(seen, (QStringList{"80..120 Base Rate, +/-20%", "50..150 Base Rate, +/-50%", "0..200 Base Rate, +/-100%",
                                    "70..130 Average Flow, Centered, Fitted", "80..120 Base Rate, +/-20%"}));
    }

    // The figures beside the graph and on its printed page (which keeps the minutes' decimals).
    void figures() {
        LogSeries s;
        s.graph_time = {0, 0.5, 61.75};
        s.graph_avg_flow = {100, 99.876543, 101};
        s.graph_last_index = 2;
        s.max_flow = 104.5;
        s.min_flow = 96;
        s.base_rate = 100;
        const GraphInfo g = graph_info(s, "/Logs/Pump-A.LOG");
        QCOMPARE(g.caption + " " + g.points + " " + g.total_time,
                 "DATA LOG GRAPH - [ /logs/pump-a.log ] No Pts:  3 Total Time:  61 mins");
        QCOMPARE(g.max_flow + " " + g.min_flow + " " + g.avg_flow + " " + g.set_rate,
                 std::string("Max:  104.5 Min:  96 Avg:  99.87  100 (ml/hr)"));
        const std::vector<std::string> page = graph_print_lines(s, "/Logs/Pump-A.LOG");
        QCOMPARE(QString::fromStdString(page[0] + "|" + page[1] + "|" + page[2] + "|" + page[3]),
                 "Average flow rate:  99.87 ml/hr  Total time:  61.75 mins|Maximum flow rate:  104.50 ml/hr Number of Points:  3|"
                 "Minimum flow rate:  96.00 ml/hr |File name:  /logs/pump-a.log");
    }
};

QTEST_GUILESS_MAIN(tst_log_reader)
#include "tst_log_reader.moc"
