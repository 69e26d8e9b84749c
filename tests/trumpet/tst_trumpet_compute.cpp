// The trumpet computation and its settings, without a widget.
#include <QtTest>

#include <vector>

#include "graph/log_reader.h"
#include "trumpet/compute.h"
#include "trumpet/trumpet_settings.h"

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

// Records a minute apart to minute n at 120 ml/h; averages of 0 but the last keep the logged times.
LogSeries steady_120(int n, double final_avg, double base_rate) {
    std::vector<double> time, avg, volume;
    for (int i = 0; i <= n; ++i) {
        time.push_back(i);
        avg.push_back(i == n ? final_avg : 0);
        volume.push_back(2.0 * i);
    }
    return series_of(time, avg, volume, base_rate);
}

// The entries of a list, the selected one in brackets.
QString joined(const std::vector<std::string>& v, int selected = -1) {
    QStringList l;
    for (int i = 0; i < int(v.size()); ++i) {
        const QString e = QString::fromStdString(v[i]);
        l << (i == selected ? "[" + e + "]" : e);
    }
    return l.join(' ');
}

QString window_of(const StartChoice& c) {
    return QString("%1+%2=%3").arg(c.trumpet_start_time).arg(c.calculation_length).arg(c.trumpet_end_time);
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
    // Runs on a console log against figures worked out apart; one computation object, as the form keeps.
    void console_log_data() {
        QTest::addColumn<double>("interval");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<int>("points");
        QTest::addColumn<QList<float>>("table");
        QTest::newRow("30 s, whole log") << 30.0 << 0 << 130 << 261
            << QList<float>{2.0f, 6.038405895233154f, -5.726716041564941f, 5.978021621704102f, -5.6694488525390625f, 5.0f, 2.4002230167388916f, -2.4813640117645264f, 2.376220941543579f, -2.456550359725952f, 11.0f, 1.3948204517364502f, -1.3787169456481934f, 1.3808722496032715f, -1.3649296760559082f, 19.0f, 0.7495797276496887f, -0.7363774180412292f, 0.7420839071273804f, -0.7290136218070984f, 31.0f, 0.3499036729335785f, -0.3422747552394867f, 0.34640464186668396f, -0.33885201811790466f};
        QTest::newRow("defaults: 60 s, minutes 60 to 120") << 60.0 << 60 << 120 << 61
            << QList<float>{2.0f, 5.088281154632568f, -5.149223327636719f, 5.037398338317871f, -5.097731113433838f, 5.0f, 2.3081741333007812f, -2.3625850677490234f, 2.285092353820801f, -2.338959217071533f, 11.0f, 1.3718206882476807f, -1.3787169456481934f, 1.358102560043335f, -1.3649296760559082f, 19.0f, 0.6943115592002869f, -0.7336522936820984f, 0.6873683929443359f, -0.7263157963752747f, 31.0f, 0.31108447909355164f, -0.3018941879272461f, 0.30797362327575684f, -0.29887527227401733f};
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
        static TrumpetComputation c;
        const TrumpetResult r = c.run(log.series, {interval, std::int16_t(start), std::int16_t(end)});
        QVERIFY2(r.ok(), r.error.c_str());
        QCOMPARE(r.trumpet_avg_rate, 99.05);
        QCOMPARE(r.trumpet_avg_error, 0.05050505050504763);
        QVERIFY(!r.insufficient_points);
        QCOMPARE(int(r.trumpet_point_count), points);
        QCOMPARE(flat(r.trumpet_table), table);
    }

    // The 31-minute period does not fit minutes 0 to 30; the overall rate is the last average but one (0).
    void period_spans_data() {
        QTest::addColumn<double>("base_rate");
        QTest::addColumn<QList<float>>("table");
        QTest::addColumn<double>("avg_error");
        const QList<float> spans{2, 20, 10, 20, 10, 5, 20, 10, 20, 10, 11, 20, 10, 20, 10, 19, 20, 10, 20, 10, 31, 10, 10, 10, 10};
        QTest::newRow("60 s") << 100.0 << spans << -100.0;
        QTest::newRow("base rate 0") << 0.0
            << QList<float>{2, 0, 0, 0, 0, 5, 0, 0, 0, 0, 11, 0, 0, 0, 0, 19, 0, 0, 0, 0, 31, 0, 0, 0, 0} << 0.0;
    }
    void period_spans() {
        QFETCH(double, base_rate);
        QFETCH(QList<float>, table);
        QFETCH(double, avg_error);
        const TrumpetResult r = graph_trumpet(steady_120(100, 110, base_rate), {60, 0, 30});
        QVERIFY(r.ok());
        QCOMPARE(int(r.trumpet_point_count), 31);
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
        // Before a shared minute the bracket gives the later volume, at it the first record its own.
        QTest::newRow("same corrected time from start 0") << QList<double>{2, 2, 3, 4, 5} << QList<double>{1, 1.5, 3, 4, 5}
                                                          << 0 << 4 << QList<double>{1.5, 1.5, 1, 3, 4} << "0..3, 5";
        // The end test compares the offset with the absolute end minute: from minute 60 only the last record stops it.
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
        QCOMPARE(QList<double>(c.trumpet_volume.begin(), c.trumpet_volume.begin() + resampled.size()), resampled);
        QCOMPARE(QString("%1..%2, %3").arg(c.first_record).arg(c.last_record).arg(r.trumpet_point_count), records);
    }

    // Too few records between first and last is a warning; a run that cannot go on ends with a reason.
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

    // A log of L minutes (refused under an hour): starts (selection in brackets), lengths, start+length=end.
    void load_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<QString>("load");
        QTest::newRow("60 minutes") << 60.0 << "[0] | All | 0+60=60";
        QTest::newRow("59.5 minutes") << 59.5 << "refused [0] | All | 0+59=59";
        // Up to 120 minutes the wanted start entry is missing; the last one is selected.
        QTest::newRow("120: two starts") << 120.0 << "0 [30] | 60 All | 30+60=90";
        QTest::newRow("just over 120") << 120.01 << "0 30 [60] | 60 120 All | 60+60=120";
    }
    void load() {
        QFETCH(double, L);
        QFETCH(QString, load);
        LogSeries s;
        s.graph_time = {0, L};
        s.graph_last_index = 1;
        const TrumpSetLoad d = trumpset_load(L);
        QCOMPARE(QString(check_trumpet_data(s) ? "refused " : "") + joined(d.choice.start_entries, d.choice.start_selected) +
                     " | " + joined(d.length_entries) + " | " + window_of(d.choice), load);
    }

    // Choosing a length rebuilds the start list; " -": it cannot be changed.
    void choose_length_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("choice");
        QTest::newRow("600, 540: two starts") << 600.0 << "540" << "0 [30] | 30+540=570";
        QTest::newRow("121, 120: one start") << 121.0 << "120" << "[0] | 0+120=120";
        QTest::newRow("75.6, All: 75.5 rounds up") << 75.6 << "All" << "[0] - | 0+76=76";
        QTest::newRow("76.6, All: 76.5 rounds to even") << 76.6 << "All" << "[0] - | 0+76=76";
        QTest::newRow("77.5, All: a half stays") << 77.5 << "All" << "[0] - | 0+77=77";
    }
    void choose_length() {
        QFETCH(double, L);
        QFETCH(QString, entry);
        QFETCH(QString, choice);
        const StartChoice c = kyt::choose_length(L, entry.toStdString());
        QCOMPARE(joined(c.start_entries, c.start_selected) + (c.start_enabled ? " | " : " - | ") + window_of(c), choice);
    }

    // A cell (a single-precision half taken as its decimal) and the period, on the screen and the page.
    void texts_data() {
        QTest::addColumn<float>("cell");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QString>("page");  // the start of the page's maximum line, the period
        QTest::newRow("an hour from minute 60") << 5.088281f << 60 << 120 << "5.09 | 60 min  -  From 60 to 120 min"
                                               << "     05.09 | 60 min -  From 60 to 120 min";
        QTest::newRow("single 0.145") << 0.145f << 0 << 60 << "0.15 | 60 min  -  From 0 to 60 min"
                                      << "     00.15 | 60 min -  From 0 to 60 min";
        QTest::newRow("negative, end below 60") << -5.149223f << 30 << 50 << "-5.15 | 50 min  -  From 30 to 50 min"
                                                << "    -05.15 | 50 min  -  From 30 to 50 min";
        QTest::newRow("a tiny negative formats to zero") << -0.001f << 0 << 59 << "-0.00 | 59 min  -  From 0 to 59 min"
                                                         << "     -00.00 | 59 min  -  From 0 to 59 min";
    }
    void texts() {
        QFETCH(float, cell);
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(QString, screen);
        QFETCH(QString, page);
        TrumpetResult r;
        r.trumpet_table[0][max_error_percent] = cell;
        const TrumpetSummaryTexts t = trumpet_summary_texts(r, 99, std::int16_t(start), std::int16_t(end));
        QCOMPARE(QString::fromStdString(t.max_error_percent[0] + " | " + t.analysis_period),
                 QString(screen).replace("| ", "| Analysis Period:  "));
        const TrumpetPageTexts p = trumpet_page_texts({&r, 99, 60, std::int16_t(start), std::int16_t(end), 30, "A.LOG"});
        QCOMPARE(QString::fromStdString(p.table[3]).left(page.indexOf(" |")) + " | " + QString::fromStdString(p.figures[3]),
                 QString(page).replace("| ", "| Analysis Period:  "));
    }
};

QTEST_APPLESS_MAIN(tst_trumpet_compute)
#include "tst_trumpet_compute.moc"
