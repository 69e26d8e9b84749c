#include <QtTest>

#include <string>
#include <vector>

#include "common/numbers.h"
#include "graph/log_reader.h"
#include "support/kyt_tool_run.h"

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

}  // namespace

class tst_log_reader : public QObject {
    Q_OBJECT
private slots:
    // The elapsed time of a record, in minutes truncated to two decimals; six
    // digits take an exact path, anything else the general number reader.
    void elapsed_time_data() {
        QTest::addColumn<QString>("time");
        QTest::addColumn<double>("minutes");
        QTest::newRow("ten seconds truncate, not round") << "00:00:10" << 0.16;
        QTest::newRow("largest two-digit fields") << "99:59:59" << 5999.98;
        QTest::newRow("short seconds field") << "00:00:1" << 0.01;
        QTest::newRow("letters read as zero") << "ab:01:xx" << 1.0;
    }
    void elapsed_time() {
        QFETCH(QString, time);
        QFETCH(double, minutes);
        const LogReadResult r = read_log(log_of(row(time.toStdString(), "1.000", "1.000", "1.000", "1") + rows(3, 1)));
        QVERIFY2(r.accepted(), r.message ? r.message->text.c_str() : "");
        QCOMPARE(r.series.graph_time[0], minutes);
    }

    // The box of a refused log is "TITLE STYLE: text".
    void refused_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("file");  // readable or not, and the last record index counted
        const auto log = [](const std::string& text) { return QString::fromStdString(text); };
        const QString short_log = "Insufficient Points 48: Insufficient number of Graph Points";
        const QString bad_format = "ERROR 16: Invalid Log file; possibly wrong format";
        const QString range = "ERROR 16: Value out of range in line %1; graphing cancelled";
        QTest::newRow("occlusion") << log(head + "         OCCLUSION PRESSURE TEST\r\n" + rows(5) + end_block)
                                   << "Occlusion Data 48: Occlusion Pressure test Graph not implemented" << "unreadable -1";
        QTest::newRow("PCA") << log(head + "   P.C.A. PUMP TEST   \r\n" + rows(5)) << "PCA Data 48: PCA test Graph not implemented"
                             << "unreadable -1";
        QTest::newRow("dual rate after records") << log(rows(5) + "DUAL RATE TEST\r\n" + rows(5))
                                                 << "Dual Rate Test Data 48: Dual Rate Test Graph not implemented" << "unreadable 4";
        QTest::newRow("three records") << log(log_of(rows(3))) << short_log << "ok 2";
        QTest::newRow("100 hours is not a record")
            << log(log_of(rows(3) + row("100:00:00", "1.000", "1.000", "1.000", "1"))) << short_log << "ok 2";
        QTest::newRow("no model line") << log(log_of(rows(4)).replace(head.find("MAROVANT"), 1, "N")) << bad_format << "ok 3";
        QTest::newRow("four fields") << log(log_of(rows(3) + row("00:09:00", "1.0", "1.0", "1.0", "")))
                                     << "ERROR 16: Data record with fewer than five fields in line 15; graphing cancelled"
                                     << "ok 3";
        QTest::newRow("pressure beyond 16 bits") << log(log_of(rows(3) + row("00:09:00", "1.0", "1.0", "1.0", "32767.5")))
                                                 << range.arg(15) << "ok 3";
        QTest::newRow("flow beyond a double") << log(log_of(row("00:09:00", "1E999", "1.0", "1.0", "0") + rows(3)))
                                              << range.arg(12) << "ok 3";
        QTest::newRow("final average beyond 16 bits") << log(log_of(rows(3) + row("00:09:00", "1.0", "40000", "1.0", "0")))
                                                      << "ERROR 16: Final average flow out of range; graphing cancelled"
                                                      << "ok 3";
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

    // Lines end at LF (a CR before it taken off) or at a CR alone. Records
    // after the end mark or a character 7 are counted but not read, so the
    // final average stays 0.
    void line_ends_and_end_marks_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("last_index");
        QTest::addColumn<double>("final_avg");
        const QString crlf = QString::fromStdString(log_of(rows(4)));
        QTest::newRow("LF alone") << QString(crlf).replace("\r\n", "\n") << 3 << 100.0;
        QTest::newRow("no end after the last row") << QString::fromStdString(head + rows(4)).chopped(2) << 3 << 100.0;
        QTest::newRow("CR alone") << QString(crlf).replace("\r\n", "\r") << 3 << 100.0;
        QTest::newRow("records after the end") << QString::fromStdString(log_of(rows(4)) + rows(2, 10)) << 5 << 0.0;
        QTest::newRow("character 7 ends the reading") << QString::fromStdString(head + rows(4) + "\x07\r\n" + rows(1, 10))
                                                      << 4 << 0.0;
    }
    void line_ends_and_end_marks() {
        QFETCH(QString, text);
        QFETCH(int, last_index);
        QFETCH(double, final_avg);
        const LogReadResult r = read_log(text.toStdString());
        QVERIFY(r.accepted());
        QCOMPARE(int(r.series.graph_last_index), last_index);
        QCOMPARE(r.series.final_avg_flow, final_avg);
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
        QCOMPARE(s.graph_pressure, (std::vector<std::int16_t>{12, 12, 14, 0}));  // halves to even
        // The base rate rounds the last average but one half up; the whole final average halves to even.
        QCOMPARE(s.base_rate, 99.0);
        QCOMPARE(int(s.avg_flow_whole), 98);
        QCOMPARE(s.final_avg_flow, 98.5);
        QCOMPARE(s.max_volume, 1.0);
    }

    // The flow extremes and the default flow scale, centred on the final
    // average and wide enough for the farther extreme.
    void extremes_and_scale_data() {
        QTest::addColumn<QList<double>>("flows");
        QTest::addColumn<double>("final_avg");
        QTest::addColumn<QString>("extremes");
        QTest::newRow("up farther, above 1") << QList<double>{90, 110, 100, 95} << 99.4 << "90..110 scale 89..110";
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

    // The figures of a console log, worked out independently of the reader.
    void console_log_figures() {
        const LogReadResult r = read_log_file(graph_data("single_rate_130min.log").toStdString());
        QVERIFY(r.accepted());
        const LogSeries& s = r.series;
        QCOMPARE(QString("%1 %2 %3 scale %4..%5 last %6 flow %7..%8 volume %9").arg(s.avg_flow_whole).arg(s.base_rate)
                     .arg(s.final_avg_flow).arg(s.flow_scale_min).arg(s.flow_scale_max).arg(s.graph_last_index)
                     .arg(s.min_flow).arg(s.max_flow).arg(s.max_volume),
                 "99 99 99.04 scale 91..108 last 520 flow 90.61..107.5 volume 214");
    }
};

QTEST_GUILESS_MAIN(tst_log_reader)
#include "tst_log_reader.moc"
