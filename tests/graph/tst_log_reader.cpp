#include <QtTest>

#include <string>
#include <vector>

#include "common/numbers.h"
#include "graph/log_reader.h"

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
        QTest::newRow("two and a half minutes") << "00:02:30" << 2.5;
        QTest::newRow("ten seconds truncate, not round") << "00:00:10" << 0.16;
        QTest::newRow("one hour") << "01:00:00" << 60.0;
        QTest::newRow("last second of 99 hours") << "99:59:59" << 5999.98;
        QTest::newRow("minutes beyond 59 still add") << "00:75:00" << 75.0;
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

    void field_number_data() {
        QTest::addColumn<QString>("field");
        QTest::addColumn<double>("value");
        QTest::newRow("plain") << "99.04" << 99.04;
        QTest::newRow("plus sign") << "+3" << 3.0;
        QTest::newRow("leading point") << ".5" << 0.5;
        QTest::newRow("trailing point") << "5." << 5.0;
        QTest::newRow("exponent") << "1E3" << 1000.0;
        QTest::newRow("comma ends the number") << "1,5" << 1.0;
        QTest::newRow("two points") << "1.2.3" << 1.2;
        QTest::newRow("tab inside is skipped") << "1\t2" << 12.0;
        QTest::newRow("many digits") << "0.1000000000000000055511151231257827" << 0.1;
    }
    void field_number() {
        QFETCH(QString, field);
        QFETCH(double, value);
        const std::string f = field.toStdString();
        QCOMPARE(detail::field_number(f), value);
        QCOMPARE(detail::field_number(f), leading_number(f));
    }

    void refused_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("file_ok");
        QTest::addColumn<int>("last_index");

        const auto occl = QString::fromStdString(head + "         OCCLUSION PRESSURE TEST\r\n" + rows(5) + end_block);
        QTest::newRow("occlusion") << occl << "Occlusion Pressure test Graph not implemented" << "Occlusion Data" << 48
                                   << false << -1;
        QTest::newRow("pca") << QString::fromStdString("   P.C.A. PUMP TEST   \r\n" + rows(5))
                             << "PCA test Graph not implemented" << "PCA Data" << 48 << false << -1;
        QTest::newRow("dual rate after records") << QString::fromStdString(rows(5) + "DUAL RATE TEST\r\n" + rows(5))
                                                 << "Dual Rate Test Graph not implemented" << "Dual Rate Test Data"
                                                 << 48 << false << 4;
        QTest::newRow("three records") << QString::fromStdString(log_of(rows(3)))
                                       << "Insufficient number of Graph Points" << "Insufficient Points" << 48 << true
                                       << 2;
        QTest::newRow("no records") << QString::fromStdString(head + end_block)
                                    << "Insufficient number of Graph Points" << "Insufficient Points" << 48 << true
                                    << -1;
        QTest::newRow("100 hours is not a record")
            << QString::fromStdString(log_of(rows(3) + row("100:00:00", "1.000", "1.000", "1.000", "1")))
            << "Insufficient number of Graph Points" << "Insufficient Points" << 48 << true << 2;
        QTest::newRow("no model line") << QString::fromStdString(log_of(rows(4)).replace(head.find("MAROVANT"), 1, "N"))
                                       << "Invalid Log file; possibly wrong format" << "ERROR" << 16 << true << 3;
        QTest::newRow("misspelled first head")
            << QString::fromStdString(log_of(rows(4)).replace(head.find("Elapsed"), 7, "Elasped"))
            << "Invalid Log file; possibly wrong format" << "ERROR" << 16 << true << 3;
        QTest::newRow("records before the heads are counted, not read")
            << QString::fromStdString(rows(4) + head + end_block) << "Invalid Log file; possibly wrong format"
            << "ERROR" << 16 << true << 3;
        QTest::newRow("four fields") << QString::fromStdString(log_of(rows(3) + row("00:09:00", "1.0", "1.0", "1.0", "")))
                                     << "Data record with fewer than five fields in line 15; graphing cancelled"
                                     << "ERROR" << 16 << true << 3;
        QTest::newRow("pressure beyond 16 bits")
            << QString::fromStdString(log_of(rows(3) + row("00:09:00", "1.0", "1.0", "1.0", "32767.5")))
            << "Value out of range in line 15; graphing cancelled" << "ERROR" << 16 << true << 3;
        QTest::newRow("flow beyond a double")
            << QString::fromStdString(log_of(row("00:09:00", "1E999", "1.0", "1.0", "0") + rows(3)))
            << "Value out of range in line 12; graphing cancelled" << "ERROR" << 16 << true << 3;
        QTest::newRow("final average beyond 16 bits")
            << QString::fromStdString(log_of(rows(3) + row("00:09:00", "1.0", "40000", "1.0", "0")))
            << "Final average flow out of range; graphing cancelled" << "ERROR" << 16 << true << 3;
    }
    void refused() {
        QFETCH(QString, text);
        QFETCH(QString, message);
        QFETCH(QString, title);
        QFETCH(int, style);
        QFETCH(bool, file_ok);
        QFETCH(int, last_index);
        const LogReadResult r = read_log(text.toStdString());
        QVERIFY(!r.accepted());
        QCOMPARE(QString::fromStdString(r.message->text), message);
        QCOMPARE(QString::fromStdString(r.message->title), title);
        QCOMPARE(r.message->style, style);
        QCOMPARE(r.graph_file_ok, file_ok);
        QCOMPARE(int(r.series.graph_last_index), last_index);
    }

    // Lines end at LF, with a CR before it taken off; a CR alone ends none.
    void line_ends_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("last_index");
        const QString crlf = QString::fromStdString(log_of(rows(4)));
        QTest::newRow("CR LF") << crlf << 3;
        QTest::newRow("LF alone") << QString(crlf).replace("\r\n", "\n") << 3;
        QTest::newRow("no end after the last row") << QString::fromStdString(head + rows(4)).chopped(2) << 3;
        QTest::newRow("CR alone") << QString(crlf).replace("\r\n", "\r") << -1;
    }
    void line_ends() {
        QFETCH(QString, text);
        QFETCH(int, last_index);
        const LogReadResult r = read_log(text.toStdString());
        QCOMPARE(int(r.series.graph_last_index), last_index);
        if (last_index == 3) {
            QVERIFY(r.accepted());
            QCOMPARE(r.series.graph_volume[3], 5.0);
        }
    }

    void refused_kind_sets_its_flag() {
        const LogReadResult r = read_log(head + "P.C.A. PUMP TEST\r\n" + rows(5));
        QVERIFY(r.pca_test && !r.occlusion_test && !r.dual_rate_test);
    }

    void four_records_are_read() {
        const LogReadResult r = read_log(log_of(row("00:00:00", "101.1", "0.000", "0.000", "12") +
                                                row("00:00:15", "102.6", "102.0", "0.425", "12.5") +
                                                row("00:00:30", "9.999", "98.5", "0.852", "13.5") +
                                                row("00:00:45", "1000", "98.5", "1.276", "-0.5")));
        QVERIFY(r.accepted());
        const LogSeries& s = r.series;
        QVERIFY(s.graph_valid);
        QCOMPARE(int(s.graph_last_index), 3);
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

    void extremes_and_scale_data() {
        QTest::addColumn<QList<double>>("flows");
        QTest::addColumn<double>("final_avg");
        QTest::addColumn<double>("max_flow");
        QTest::addColumn<double>("min_flow");
        QTest::addColumn<double>("scale_min");
        QTest::addColumn<double>("scale_max");
        // up = max - avg, down = avg - min.
        QTest::newRow("up farther, above 1") << QList<double>{90, 110, 100, 95} << 99.4 << 110.0 << 90.0 << 89.0
                                             << 110.0;
        QTest::newRow("down farther, above 1") << QList<double>{90, 105, 100, 95} << 99.4 << 105.0 << 90.0 << 90.0
                                               << 109.0;
        QTest::newRow("average exactly 1, up farther") << QList<double>{0.5, 2.0, 1.0, 1.2} << 1.0 << 2.0 << 0.5
                                                       << 0.0 << 3.0;
        QTest::newRow("average exactly 1, down farther") << QList<double>{0.6, 1.3, 1.0, 1.0} << 1.0 << 1.3 << 0.6
                                                         << 0.0 << 2.0;
        QTest::newRow("average just above 1") << QList<double>{0.6, 1.3, 1.0, 1.0} << 1.01 << 1.3 << 0.6 << 1.0
                                              << 1.0;
        QTest::newRow("minimum is not held at 100") << QList<double>{150, 160, 170, 155} << 160.0 << 170.0 << 150.0
                                                    << 150.0 << 170.0;
        QTest::newRow("maximum starts at 0") << QList<double>{-5, -3, -4, -6} << 0.0 << 0.0 << -6.0 << -6.0
                                             << 7.0;
    }
    void extremes_and_scale() {
        QFETCH(QList<double>, flows);
        QFETCH(double, final_avg);
        QFETCH(double, max_flow);
        QFETCH(double, min_flow);
        QFETCH(double, scale_min);
        QFETCH(double, scale_max);
        std::string body;
        for (int i = 0; i < flows.size(); ++i) {
            const std::string avg = i + 1 == flows.size() ? general_number(final_avg) : "50";
            body += row("00:0" + std::to_string(i) + ":00", general_number(flows[i]), avg, "1.0", "0");
        }
        const LogReadResult r = read_log(log_of(body));
        QVERIFY(r.accepted());
        QCOMPARE(r.series.max_flow, max_flow);
        QCOMPARE(r.series.min_flow, min_flow);
        QCOMPARE(r.series.flow_scale_min, scale_min);
        QCOMPARE(r.series.flow_scale_max, scale_max);
    }

    // Record-shaped lines after the end are counted but not read: the last
    // elements stay 0 and so does the final average.
    void records_after_the_end() {
        const LogReadResult r = read_log(log_of(rows(4)) + rows(2, 10));
        QVERIFY(r.accepted());
        QCOMPARE(int(r.series.graph_last_index), 5);
        QCOMPARE(r.series.graph_time[3], 3.0);
        QCOMPARE(r.series.graph_time[4], 0.0);
        QCOMPARE(r.series.graph_avg_flow[5], 0.0);
        QCOMPARE(r.series.final_avg_flow, 0.0);
        QCOMPARE(r.series.base_rate, 0.0);
    }

    void bell_ends_the_reading() {
        const LogReadResult r = read_log(head + rows(4) + "\x07" + "\r\n" + rows(1, 10));
        QVERIFY(r.accepted());
        QCOMPARE(int(r.series.graph_last_index), 4);
        QCOMPARE(r.series.graph_flow[4], 0.0);
    }

    // Only the start of a line is compared with the marks.
    void any_line_starting_with_time_is_a_mark() {
        std::string text = log_of(rows(4));
        text.replace(text.find("  Time    (ml/h)"), 6, "  Timeless");
        QVERIFY(read_log(text).accepted());
    }

    // A single-rate heading met in an earlier log counts for a later one.
    void single_rate_mark_is_sticky() {
        std::string text = log_of(rows(4));
        text.replace(text.find("SINGLE"), 6, "DOUBLE");
        const LogReadResult fresh = read_log(text);
        QVERIFY(!fresh.accepted());
        QVERIFY(!fresh.single_rate_test);
        const LogReadResult after = read_log(text, true);
        QVERIFY(after.accepted());
        QVERIFY(after.single_rate_test);
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
        if (accepted) {
            QCOMPARE(int(result.series.graph_last_index), 32766);
            QCOMPARE(result.series.graph_flow.size(), std::size_t(32767));
        } else {
            QCOMPARE(QString::fromStdString(result.message->text),
                     QString("Error opening LOG file for graphing, graphing cancelled"));
            QVERIFY(!result.graph_file_ok);
        }
    }

    // A file that cannot be read is refused as the counting pass refuses it.
    void unreadable_files_data() {
        QTest::addColumn<QString>("path");
        const QString data = qEnvironmentVariable("KYT_SOURCE_DIR") + "/tests/data/graph/";
        QTest::newRow("missing file") << data + "no such.log";
        QTest::newRow("a folder") << data;
    }
    void unreadable_files() {
        QFETCH(QString, path);
        const LogReadResult r = read_log_file(path.toStdString());
        QVERIFY(r.message && !r.graph_file_ok);
        QCOMPARE(*r.message, (BoxMessage{"Error opening LOG file for graphing, graphing cancelled", "ERROR", 16}));
    }
};

QTEST_APPLESS_MAIN(tst_log_reader)
#include "tst_log_reader.moc"
