#include <QtTest>

#include <cmath>
#include <vector>

#include "graph/log_reader.h"
#include "trumpet/compute.h"

using namespace kyt;

namespace {

LogSeries series_of(const std::vector<double>& time, const std::vector<double>& avg, const std::vector<double>& volume,
                    double base_rate) {
    LogSeries s;
    s.graph_time = time;
    s.graph_avg_flow = avg;
    s.graph_volume = volume;
    s.graph_flow.assign(time.size(), 0.0);
    s.graph_pressure.assign(time.size(), 0);
    s.graph_last_index = static_cast<std::int16_t>(time.size() - 1);
    s.graph_valid = true;
    s.base_rate = base_rate;
    return s;
}

// Records a minute apart to minute n at 120 ml/h; running averages of 0 but
// for the last keep the logged times up to the last record.
LogSeries steady_120(int n, double final_avg, double base_rate) {
    std::vector<double> time, avg, volume;
    for (int i = 0; i <= n; ++i) {
        time.push_back(i);
        avg.push_back(i == n ? final_avg : 0);
        volume.push_back(2.0 * i);
    }
    return series_of(time, avg, volume, base_rate);
}

QList<double> head_of(const std::vector<double>& v, int count) {
    return QList<double>(v.begin(), v.begin() + std::min<std::size_t>(count, v.size()));
}

QList<float> flat(const TrumpetTable& t) {
    QList<float> out;
    for (const auto& row : t) out.append(QList<float>(row.begin(), row.end()));
    return out;
}

}  // namespace

class tst_trumpet_compute : public QObject {
    Q_OBJECT
private slots:
    // Whole runs on a console log against figures worked out independently
    // in double precision, the table rounded to single precision.
    void console_log_data() {
        QTest::addColumn<double>("interval");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<int>("points");
        QTest::addColumn<QList<float>>("table");
        QTest::newRow("defaults: 60 s, minutes 60 to 120") << 60.0 << 60 << 120 << 61
            << QList<float>{2.0f, 5.088281154632568f, -5.149223327636719f, 5.037398338317871f, -5.097731113433838f, 5.0f, 2.3081741333007812f, -2.3625850677490234f, 2.285092353820801f, -2.338959217071533f, 11.0f, 1.3718206882476807f, -1.3787169456481934f, 1.358102560043335f, -1.3649296760559082f, 19.0f, 0.6943115592002869f, -0.7336522936820984f, 0.6873683929443359f, -0.7263157963752747f, 31.0f, 0.31108447909355164f, -0.3018941879272461f, 0.30797362327575684f, -0.29887527227401733f};
        QTest::newRow("30 s, whole log") << 30.0 << 0 << 130 << 261
            << QList<float>{2.0f, 6.038405895233154f, -5.726716041564941f, 5.978021621704102f, -5.6694488525390625f, 5.0f, 2.4002230167388916f, -2.4813640117645264f, 2.376220941543579f, -2.456550359725952f, 11.0f, 1.3948204517364502f, -1.3787169456481934f, 1.3808722496032715f, -1.3649296760559082f, 19.0f, 0.7495797276496887f, -0.7363774180412292f, 0.7420839071273804f, -0.7290136218070984f, 31.0f, 0.3499036729335785f, -0.3422747552394867f, 0.34640464186668396f, -0.33885201811790466f};
    }
    void console_log() {
        QFETCH(double, interval);
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(int, points);
        QFETCH(QList<float>, table);
        const LogReadResult log = read_log_file(qEnvironmentVariable("KYT_SOURCE_DIR").toStdString() +
                                                "/tests/data/graph/single_rate_130min.log");
        QVERIFY(log.accepted());
        const TrumpetResult r = graph_trumpet(log.series, {interval, std::int16_t(start), std::int16_t(end)});
        QVERIFY2(r.ok(), r.error.c_str());
        QCOMPARE(r.trumpet_avg_rate, 99.05);
        QCOMPARE(r.trumpet_avg_error, 0.05050505050504763);
        QVERIFY(!r.insufficient_points);
        QCOMPARE(int(r.trumpet_point_count), points);
        QCOMPARE(flat(r.trumpet_table), table);
    }

    // A steady 120 ml/h, a final average of 110, minutes 0 to 30: every period
    // that fits finds 120 and nothing below 110; the 31-minute period does not
    // fit and keeps the final average as both extremes. The overall rate is the
    // last average but one, here 0; a base rate of 0 divides nothing.
    void period_spans_data() {
        QTest::addColumn<double>("interval");
        QTest::addColumn<double>("base_rate");
        QTest::addColumn<int>("points");
        QTest::addColumn<QList<float>>("table");
        QTest::addColumn<double>("avg_error");
        const QList<float> spans{2, 20, 10, 20, 10, 5, 20, 10, 20, 10, 11, 20, 10, 20, 10, 19, 20, 10, 20, 10, 31, 10, 10, 10, 10};
        QTest::newRow("60 s") << 60.0 << 100.0 << 31 << spans << -100.0;
        QTest::newRow("base rate 0") << 60.0 << 0.0 << 31
            << QList<float>{2, 0, 0, 0, 0, 5, 0, 0, 0, 0, 11, 0, 0, 0, 0, 19, 0, 0, 0, 0, 31, 0, 0, 0, 0} << 0.0;
    }
    void period_spans() {
        QFETCH(double, interval);
        QFETCH(double, base_rate);
        QFETCH(int, points);
        QFETCH(QList<float>, table);
        QFETCH(double, avg_error);
        const TrumpetResult r = graph_trumpet(steady_120(100, 110, base_rate), {interval, 0, 30});
        QVERIFY(r.ok());
        QCOMPARE(int(r.trumpet_point_count), points);
        QCOMPARE(flat(r.trumpet_table), table);
        QCOMPARE(r.trumpet_avg_rate, 0.0);
        QCOMPARE(r.trumpet_avg_error, avg_error);
        QVERIFY(r.insufficient_points);
    }

    void resampling_data() {
        QTest::addColumn<QList<double>>("time");
        QTest::addColumn<QList<double>>("volume");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<QList<double>>("resampled");  // the first points
        QTest::addColumn<QString>("records");           // "first..last records, points"
        // Minutes 0 and 1 lie on the line through the first two records.
        QTest::newRow("start 0 extrapolates backwards") << QList<double>{1.5, 2.5, 3.5, 4.5} << QList<double>{4, 6, 8, 10}
                                                        << 0 << 3 << QList<double>{1, 3, 5, 7} << "0..2, 4";
        // Before a shared minute the bracket gives the later volume, at it the first record its own.
        QTest::newRow("same corrected time from start 0") << QList<double>{2, 2, 3, 4, 5} << QList<double>{1, 1.5, 3, 4, 5}
                                                          << 0 << 4 << QList<double>{1.5, 1.5, 1, 3, 4} << "0..3, 5";
        QTest::newRow("same corrected time at a later start") << QList<double>{5, 5, 6, 7, 8}
                                                              << QList<double>{10, 11, 12, 13, 14} << 5 << 7
                                                              << QList<double>{11, 12, 13} << "1..3, 3";
        QTest::newRow("on a record's time") << QList<double>{0, 1, 2, 3, 4} << QList<double>{0, 2, 7, 6, 8} << 0 << 3
                                            << QList<double>{0, 2, 7, 6} << "0..3, 4";
        // The end test compares the offset from the start with the absolute end
        // minute, so from minute 60 only the last record stops it: 41 points, not 31.
        const QList<double> tens{0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120};
        QTest::newRow("end test on the offset") << tens << tens << 60 << 90 << QList<double>{60, 61, 62} << "6..10, 41";
    }
    void resampling() {
        QFETCH(QList<double>, time);
        QFETCH(QList<double>, volume);
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(QList<double>, resampled);
        QFETCH(QString, records);
        const LogSeries s = series_of({time.begin(), time.end()}, std::vector<double>(time.size(), 0.0),
                                      {volume.begin(), volume.end()}, 100);
        TrumpetComputation c;
        const TrumpetResult r = c.run(s, {60, std::int16_t(start), std::int16_t(end)});
        QVERIFY2(r.ok(), r.error.c_str());
        QCOMPARE(head_of(c.trumpet_volume, resampled.size()), resampled);
        QCOMPARE(QString("%1..%2, %3").arg(c.first_record).arg(c.last_record).arg(r.trumpet_point_count), records);
    }

    // Too few records between first and last (120 at 30 s, 60 at 60 s) is a
    // warning; a run that cannot go on ends with a reason, not a fault.
    void outcome_data() {
        QTest::addColumn<int>("records");
        QTest::addColumn<double>("interval");
        QTest::addColumn<double>("last_avg");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("119 at 30 s") << 120 << 30.0 << 0.0 << 129 << "too few";
        QTest::newRow("120 at 30 s") << 121 << 30.0 << 0.0 << 130 << "enough";
        QTest::newRow("59 at 60 s") << 60 << 60.0 << 0.0 << 69 << "too few";
        QTest::newRow("60 at 60 s") << 61 << 60.0 << 0.0 << 70 << "enough";
        QTest::newRow("one record") << 1 << 60.0 << 0.0 << 30 << "The log holds too few records; trumpet computation cancelled";
        QTest::newRow("interval not a number") << 20 << double(NAN) << 0.0 << 30
                                               << "The interpolation interval is not a number; trumpet computation cancelled";
        // The last corrected time falls back to minute 1 behind records to minute 19.
        QTest::newRow("corrected times fall back") << 20 << 60.0 << 2280.0 << 30
            << "More resampled points than the log's last corrected time allows; trumpet computation cancelled";
        QTest::newRow("corrected time beyond a double") << 20 << 60.0 << 1e-308 << 30
            << "A corrected time is out of range; trumpet computation cancelled";
    }
    void outcome() {
        QFETCH(int, records);
        QFETCH(double, interval);
        QFETCH(double, last_avg);
        QFETCH(int, end);
        QFETCH(QString, outcome);
        const TrumpetResult r = graph_trumpet(steady_120(records - 1, last_avg, 100), {interval, 0, std::int16_t(end)});
        QCOMPARE(r.ok() ? QString(r.insufficient_points ? "too few" : "enough") : QString::fromStdString(r.error), outcome);
    }

    void series_of_unequal_length_are_refused() {
        LogSeries s = steady_120(10, 110, 100);
        s.graph_volume.pop_back();
        QVERIFY(!graph_trumpet(s, {60, 0, 5}).ok());
    }

    // A computation object kept between runs gives what a fresh one gives.
    void runs_start_afresh() {
        TrumpetComputation c;
        QVERIFY(c.run(steady_120(200, 130, 100), {30, 0, 150}).ok());
        const LogSeries small = steady_120(40, 110, 100);
        const TrumpetResult again = c.run(small, {60, 0, 30});
        const TrumpetResult fresh = graph_trumpet(small, {60, 0, 30});
        QCOMPARE(flat(again.trumpet_table), flat(fresh.trumpet_table));
        QCOMPARE(again.trumpet_point_count, fresh.trumpet_point_count);
    }
};

QTEST_APPLESS_MAIN(tst_trumpet_compute)
#include "tst_trumpet_compute.moc"
