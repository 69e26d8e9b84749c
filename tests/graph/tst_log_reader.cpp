#include <QtTest>

#include <string>
#include <vector>

#include "common/numbers.h"
#include "graph/log_reader.h"
#include "support/kyt_tool_run.h"

using namespace kyt;

namespace {

// The head of a single-rate log as the console writes it, up to the column
// heads, each line with its CR LF.
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
        char t[16];
        std::snprintf(t, sizeof t, "%02d:%02d:00", m / 60, m % 60);
        s += row(t, "100.0", i == 0 ? "0.000" : "100.0", format_picture(m * 100.0 / 60, m < 6 ? "0.000" : "00.00"),
                 "12");
    }
    return s;
}

std::string log_of(const std::string& body) { return head + body + end_block; }

}  // namespace

class tst_log_reader : public QObject {
    Q_OBJECT
private slots:
    // The elapsed time of a record, in minutes truncated to two decimals.
    void elapsed_time_data() {
        QTest::addColumn<QString>("time");
        QTest::addColumn<double>("minutes");
        QTest::newRow("ten seconds truncate, not round") << "00:00:10" << 0.16;
        QTest::newRow("short seconds field") << "00:00:1" << 0.01;
        QTest::newRow("negative hours") << "-1:00:30" << -59.5;
        QTest::newRow("decimal hours") << ".5:00:00" << 30.0;
        QTest::newRow("letters read as zero") << "ab:01:xx" << 1.0;
    }
    void elapsed_time() {
        QFETCH(QString, time);
        QFETCH(double, minutes);
        const LogReadResult r = read_log(log_of(row(time.toStdString(), "1.000", "1.000", "1.000", "1") + rows(3, 1)));
        QVERIFY2(r.accepted(), r.message ? r.message->text.c_str() : "");
        QCOMPARE(r.series.graph_time[0], minutes);
    }

    // Whole-second times are worked out exactly; they must give what the
    // decimal text of the minutes gives, for every hour, minute and second
    // the two-digit fields can hold.
    void whole_seconds_match_the_decimal_text() {
        char field[16];
        for (int h = 0; h <= 99; ++h)
            for (int m = 0; m <= 99; ++m)
                for (int s = 0; s <= 99; ++s) {
                    std::snprintf(field, sizeof field, "%02d:%02d:%02d", h, m, s);
                    const double expected = detail::minutes_through_decimal_text(h * 60 + m + s / 60.0);
                    if (detail::elapsed_minutes(field) != expected) QFAIL(field);
                }
    }

    // The box of a refused log is "TITLE STYLE: text".
    void refused_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("box");
        QTest::addColumn<bool>("file_ok");
        QTest::addColumn<int>("last_index");
        const auto log = [](const std::string& text) { return QString::fromStdString(text); };
        const QString short_log = "Insufficient Points 48: Insufficient number of Graph Points";
        const QString bad_format = "ERROR 16: Invalid Log file; possibly wrong format";
        QTest::newRow("occlusion") << log(head + "         OCCLUSION PRESSURE TEST\r\n" + rows(5) + end_block)
                                   << "Occlusion Data 48: Occlusion Pressure test Graph not implemented" << false << -1;
        QTest::newRow("dual rate after records") << log(rows(5) + "DUAL RATE TEST\r\n" + rows(5))
                                                 << "Dual Rate Test Data 48: Dual Rate Test Graph not implemented" << false << 4;
        QTest::newRow("three records") << log(log_of(rows(3))) << short_log << true << 2;
        QTest::newRow("100 hours is not a record")
            << log(log_of(rows(3) + row("100:00:00", "1.000", "1.000", "1.000", "1"))) << short_log << true << 2;
        QTest::newRow("no model line") << log(log_of(rows(4)).replace(head.find("MAROVANT"), 1, "N")) << bad_format << true << 3;
        QTest::newRow("misspelled first head") << log(log_of(rows(4)).replace(head.find("Elapsed"), 7, "Elasped"))
                                               << bad_format << true << 3;
        QTest::newRow("records before the heads are counted, not read") << log(rows(4) + head + end_block) << bad_format
                                                                        << true << 3;
        QTest::newRow("four fields") << log(log_of(rows(3) + row("00:09:00", "1.0", "1.0", "1.0", "")))
                                     << "ERROR 16: Data record with fewer than five fields in line 15; graphing cancelled"
                                     << true << 3;
        QTest::newRow("pressure beyond 16 bits") << log(log_of(rows(3) + row("00:09:00", "1.0", "1.0", "1.0", "32767.5")))
                                                 << "ERROR 16: Value out of range in line 15; graphing cancelled" << true << 3;
        QTest::newRow("flow beyond a double") << log(log_of(row("00:09:00", "1E999", "1.0", "1.0", "0") + rows(3)))
                                              << "ERROR 16: Value out of range in line 12; graphing cancelled" << true << 3;
        QTest::newRow("final average beyond 16 bits") << log(log_of(rows(3) + row("00:09:00", "1.0", "40000", "1.0", "0")))
                                                      << "ERROR 16: Final average flow out of range; graphing cancelled"
                                                      << true << 3;
    }
    void refused() {
        QFETCH(QString, text);
        QFETCH(QString, box);
        QFETCH(bool, file_ok);
        QFETCH(int, last_index);
        const LogReadResult r = read_log(text.toStdString());
        QVERIFY(!r.accepted());
        QCOMPARE(QString("%1 %2: %3").arg(QString::fromStdString(r.message->title)).arg(r.message->style)
                     .arg(QString::fromStdString(r.message->text)), box);
        QCOMPARE(r.graph_file_ok, file_ok);
        QCOMPARE(int(r.series.graph_last_index), last_index);
    }

    // Lines end at LF, with a CR before it taken off, or at a CR alone.
    // Record-shaped lines after the end mark or a character 7 are counted
    // but not read: the last elements stay 0, and so does the final average.
    void line_ends_and_end_marks_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("last_index");
        QTest::addColumn<double>("final_avg");  // -1: refused
        const QString crlf = QString::fromStdString(log_of(rows(4)));
        QTest::newRow("CR LF") << crlf << 3 << 100.0;
        QTest::newRow("LF alone") << QString(crlf).replace("\r\n", "\n") << 3 << 100.0;
        QTest::newRow("no end after the last row") << QString::fromStdString(head + rows(4)).chopped(2) << 3 << 100.0;
        QTest::newRow("CR alone") << QString(crlf).replace("\r\n", "\r") << 3 << 100.0;
        QTest::newRow("records after the end") << QString::fromStdString(log_of(rows(4)) + rows(2, 10)) << 5 << 0.0;
        // Only the start of a line is compared with the marks.
        QTest::newRow("a line starting with Time is a mark")
            << QString(crlf).replace("  Time    (ml/h)", "  Timeless(ml/h)") << 3 << 100.0;
        QTest::newRow("character 7 ends the reading") << QString::fromStdString(head + rows(4) + "\x07\r\n" + rows(1, 10))
                                                      << 4 << 0.0;
    }
    void line_ends_and_end_marks() {
        QFETCH(QString, text);
        QFETCH(int, last_index);
        QFETCH(double, final_avg);
        const LogReadResult r = read_log(text.toStdString());
        QCOMPARE(int(r.series.graph_last_index), last_index);
        QCOMPARE(r.accepted(), final_avg >= 0);
        if (r.accepted()) QCOMPARE(r.series.final_avg_flow, final_avg);
    }

    void refused_kind_sets_its_flag() {
        const LogReadResult r = read_log(head + "   P.C.A. PUMP TEST   \r\n" + rows(5));
        QVERIFY(r.pca_test && !r.occlusion_test && !r.dual_rate_test);
        QCOMPARE(*r.message, (BoxMessage{"PCA test Graph not implemented", "PCA Data", box_exclamation}));
    }

    void four_records_are_read() {
        const LogReadResult r = read_log(log_of(row("00:00:00", "101.1", "0.000", "0.000", "12") +
                                                row("00:00:15", "102.6", "102.0", "0.425", "12.5") +
                                                row("00:00:30", "9.999", "98.5", "0.852", "13.5") +
                                                row("00:00:45", "1000", "98.5", "1.276", "-0.5")));
        QVERIFY(r.accepted());
        const LogSeries& s = r.series;
        QCOMPARE(s.graph_time, (std::vector<double>{0, 0.25, 0.5, 0.75}));
        QCOMPARE(s.graph_flow, (std::vector<double>{101.1, 102.6, 9.999, 1000}));
        QCOMPARE(s.graph_avg_flow, (std::vector<double>{0, 102.0, 98.5, 98.5}));
        QCOMPARE(s.graph_volume, (std::vector<double>{0, 0.425, 0.852, 1.276}));
        // Pressure rounds halves to even.
        QCOMPARE(s.graph_pressure, (std::vector<std::int16_t>{12, 12, 14, 0}));
        // The base rate rounds the last average but one half up; the whole
        // final average rounds halves to even.
        QCOMPARE(s.base_rate, 99.0);
        QCOMPARE(int(s.avg_flow_whole), 98);
        QCOMPARE(s.final_avg_flow, 98.5);
        QCOMPARE(s.max_volume, 1.0);
    }

    // The flow extremes and the default flow scale: "min..max scale min..max";
    // up = max - avg, down = avg - min.
    void extremes_and_scale_data() {
        QTest::addColumn<QList<double>>("flows");
        QTest::addColumn<double>("final_avg");
        QTest::addColumn<QString>("extremes");
        QTest::newRow("up farther, above 1") << QList<double>{90, 110, 100, 95} << 99.4 << "90..110 scale 89..110";
        QTest::newRow("down farther, above 1") << QList<double>{90, 105, 100, 95} << 99.4 << "90..105 scale 90..109";
        QTest::newRow("average exactly 1, up farther") << QList<double>{0.5, 2.0, 1.0, 1.2} << 1.0 << "0.5..2 scale 0..3";
        QTest::newRow("average exactly 1, down farther") << QList<double>{0.6, 1.3, 1.0, 1.0} << 1.0 << "0.6..1.3 scale 0..2";
        QTest::newRow("average just above 1") << QList<double>{0.6, 1.3, 1.0, 1.0} << 1.01 << "0.6..1.3 scale 1..1";
        QTest::newRow("minimum is not held at 100") << QList<double>{150, 160, 170, 155} << 160.0 << "150..170 scale 150..170";
        QTest::newRow("maximum starts at 0") << QList<double>{-5, -3, -4, -6} << 0.0 << "-6..0 scale -6..7";
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

    // A single-rate heading met in an earlier log counts for a later one.
    void single_rate_mark_is_sticky() {
        std::string text = log_of(rows(4));
        text.replace(text.find("SINGLE"), 6, "DOUBLE");
        const LogReadResult fresh = read_log(text), after = read_log(text, true);
        QVERIFY(!fresh.accepted() && !fresh.single_rate_test);
        QVERIFY(after.accepted() && after.single_rate_test);
    }

    // The index is 16 bits: 32767 records fit, one more is refused as an
    // unreadable file.
    void record_limit_data() {
        QTest::addColumn<int>("records");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("32767") << 32767 << true;
        QTest::newRow("32768") << 32768 << false;
    }
    void record_limit() {
        QFETCH(int, records);
        QFETCH(bool, accepted);
        std::string text = head;
        const std::string r = row("00:00:01", "1.000", "1.000", "1.000", "0");
        text.reserve(text.size() + r.size() * records);
        for (int i = 0; i < records; ++i) text += r;
        const LogReadResult result = read_log(text);
        QCOMPARE(result.accepted(), accepted);
        QCOMPARE(result.graph_file_ok, accepted);
        QCOMPARE(int(result.series.graph_last_index), accepted ? 32766 : 32767);
        if (!accepted) QCOMPARE(result.message->text, std::string("Error opening LOG file for graphing, graphing cancelled"));
    }

    // A file that cannot be read is refused as the counting pass refuses it.
    void unreadable_file() {
        const LogReadResult r = read_log_file(graph_data("no such.log").toStdString());
        QVERIFY(r.message && !r.graph_file_ok);
        QCOMPARE(*r.message, (BoxMessage{"Error opening LOG file for graphing, graphing cancelled", "ERROR", 16}));
    }

    // kyt-tool info: the figures of a console log, worked out independently
    // of the reader, or the refusal and its exit code.
    void tool_info_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<QString>("printed");  // the values in key order, or the error
        QTest::newRow("console log") << QStringList{"info", graph_data("single_rate_130min.log")} << 0
                                     << "avg_flow_whole 99, base_rate 99, final_avg_flow 99.04, flow_scale_max 108, "
                                        "flow_scale_min 91, graph_last_index 520, max_flow 107.5, max_volume 214, "
                                        "min_flow 90.61";
        QTest::newRow("occlusion log") << QStringList{"info", graph_data("occlusion.log")} << 1
                                       << "Occlusion Pressure test Graph not implemented";
        QTest::newRow("no log named") << QStringList{"info"} << 2 << "usage: kyt-tool info LOG";
    }
    void tool_info() {
        QFETCH(QStringList, args);
        QFETCH(int, exit_code);
        QFETCH(QString, printed);
        const ToolRun r = run_kyt_tool(args);
        QCOMPARE(r.exit_code, exit_code);
        QStringList values;
        for (auto v = r.values.cbegin(); v != r.values.cend(); ++v) values << v.key() + " " + v.value();
        QCOMPARE(r.error.isEmpty() ? values.join(", ") : r.error, printed);
    }
};

QTEST_GUILESS_MAIN(tst_log_reader)
#include "tst_log_reader.moc"
