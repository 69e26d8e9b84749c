#include <QtTest>

#include <cmath>

#include "support/kyt_tool_run.h"
#include "trumpet/compute.h"
#include "trumpet/trumpet_settings.h"

using namespace kyt;

namespace {

// The entries of a list, the selected one in brackets.
QString joined(const std::vector<std::string>& v, int selected = -1) {
    QStringList l;
    for (int i = 0; i < int(v.size()); ++i) {
        const QString e = QString::fromStdString(v[i]);
        l << (i == selected ? "[" + e + "]" : e);
    }
    return l.join(' ');
}

// A steady 100 ml/h log of L minutes, a record every half minute and the
// last at L.
LogSeries steady_log(double L) {
    LogSeries s;
    for (double t = 0;; t += 0.5) {
        const double at = std::min(t, L);
        s.graph_time.push_back(at);
        s.graph_flow.push_back(100);
        s.graph_avg_flow.push_back(at == 0 ? 0 : 100 + std::sin(at) * 3);
        s.graph_volume.push_back(at / 60 * s.graph_avg_flow.back());
        if (at >= L) break;
    }
    s.graph_last_index = static_cast<std::int16_t>(s.graph_time.size() - 1);
    s.base_rate = 100;
    return s;
}

QString window_of(const StartChoice& c) {
    return QString("%1+%2=%3").arg(c.trumpet_start_time).arg(c.calculation_length).arg(c.trumpet_end_time);
}

}  // namespace

class tst_trumpet_settings : public QObject {
    Q_OBJECT
private slots:
    // A log is analysed from an hour on.
    void guard() {
        const auto m = check_trumpet_data(steady_log(59.99));
        QVERIFY(m && *m == (BoxMessage{"Insufficient data for Trumpet Graph", "Data Error", box_exclamation}));
        QVERIFY(!check_trumpet_data(steady_log(60)));
    }

    // What the dialog holds when it opens on a log of L minutes: the start
    // list, its selection in brackets, the lengths, and start+length=end.
    void load_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<QString>("starts");
        QTest::addColumn<QString>("lengths");
        QTest::addColumn<QString>("window");
        const QString starts_600 = "0 30 [60] 90 120 150 180 210 240 270 300 330 360 390 420 450 480 510";
        QTest::newRow("600 minutes") << 600.0 << starts_600 << "60 120 180 240 300 360 420 480 540 All" << "60+60=120";
        QTest::newRow("60 minutes") << 60.0 << "[0]" << "All" << "0+60=60";
        QTest::newRow("59.5 minutes") << 59.5 << "[0]" << "All" << "0+59=59";
        QTest::newRow("just over 120") << 120.01 << "0 30 [60]" << "60 120 All" << "60+60=120";
        // Above 60 and up to 120 minutes the wanted start entry (1 or 2) is
        // missing; the last one that exists is selected.
        QTest::newRow("60.5: one start") << 60.5 << "[0]" << "60 All" << "0+60=60";
        QTest::newRow("90: one start") << 90.0 << "[0]" << "60 All" << "0+60=60";
        QTest::newRow("90.5: two starts") << 90.5 << "0 [30]" << "60 All" << "30+60=90";
        QTest::newRow("120: two starts") << 120.0 << "0 [30]" << "60 All" << "30+60=90";
    }
    void load() {
        QFETCH(double, L);
        QFETCH(QString, starts);
        QFETCH(QString, lengths);
        QFETCH(QString, window);
        const TrumpSetLoad d = trumpset_load(L);
        QCOMPARE(joined(d.choice.start_entries, d.choice.start_selected), starts);
        QCOMPARE(joined(d.length_entries), lengths);
        QCOMPARE(window_of(d.choice), window);
    }

    // Choosing a length rebuilds the start list; " -": it cannot be changed.
    void choose_length_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("starts");
        QTest::addColumn<QString>("window");
        QTest::newRow("600, 60") << 600.0 << "60" << "0 30 [60] 90 120 150 180 210 240 270 300 330 360 390 420 450 480 510"
                                 << "60+60=120";
        QTest::newRow("600, 540: two starts") << 600.0 << "540" << "0 [30]" << "30+540=570";
        QTest::newRow("121, 120: one start") << 121.0 << "120" << "[0]" << "0+120=120";
        QTest::newRow("600, All") << 600.0 << "All" << "[0] -" << "0+600=600";
        QTest::newRow("75.6, All: 75.5 rounds up") << 75.6 << "All" << "[0] -" << "0+76=76";
        QTest::newRow("76.6, All: 76.5 rounds to even") << 76.6 << "All" << "[0] -" << "0+76=76";
        QTest::newRow("77.5, All: a half stays") << 77.5 << "All" << "[0] -" << "0+77=77";
    }
    void choose_length() {
        QFETCH(double, L);
        QFETCH(QString, entry);
        QFETCH(QString, starts);
        QFETCH(QString, window);
        const StartChoice c = kyt::choose_length(L, entry.toStdString());
        QCOMPARE(joined(c.start_entries, c.start_selected) + (c.start_enabled ? "" : " -"), starts);
        QCOMPARE(window_of(c), window);
    }

    // Every log length from 0 to 600 minutes in tenths, each length entry
    // with its first and its last start: "All" is the whole log in whole
    // minutes, rounded down or, from an odd minute, up from above a half; the
    // window stays within the log (or the hour a shorter log is taken as);
    // and the trumpet of it computes (a log of one record is refused by the
    // core, never read past its end).
    void every_log_length() {
        for (int tenths = 0; tenths <= 6000; ++tenths) {
            const double L = tenths / 10.0;
            const LogSeries s = steady_log(L);
            for (const std::string& entry : trumpset_load(L).length_entries) {
                const StartChoice c = kyt::choose_length(L, entry);
                QVERIFY(entry == all_entry ? c.calculation_length > L - 1 && c.calculation_length <= L + 0.5
                                           : c.calculation_length == std::stoi(entry));
                for (const std::string& start : {c.start_entries.front(), c.start_entries.back()}) {
                    const int from = std::stoi(start);
                    QVERIFY(from + c.calculation_length <= std::max(L, 60.0) + 0.5);
                    const TrumpetResult r = graph_trumpet(s, {60, std::int16_t(from), std::int16_t(from + c.calculation_length)});
                    QCOMPARE(r.ok(), L > 0);
                }
            }
        }
    }

    void summary_data() {
        QTest::addColumn<float>("cell");
        QTest::addColumn<QString>("cell_text");
        QTest::addColumn<double>("avg_error");
        QTest::addColumn<QString>("avg_error_text");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("period");
        QTest::newRow("an hour from minute 60") << 5.088281f << "5.09" << 0.05050505050504763 << "% Error:  0.051" << 60
                                               << 120 << "Analysis Period:  60 min  -  From 60 to 120 min";
        // A single-precision half is taken as the decimal it stands for.
        QTest::newRow("single 0.145") << 0.145f << "0.15" << -0.0005 << "% Error:  -0.001" << 0 << 60
                                      << "Analysis Period:  60 min  -  From 0 to 60 min";
        // Below minute 60 the end stands as the length.
        QTest::newRow("end below 60") << 0.0f << "0.00" << 2.0 << "% Error:  2.000" << 30 << 50
                                      << "Analysis Period:  50 min  -  From 30 to 50 min";
    }
    void summary() {
        QFETCH(float, cell);
        QFETCH(QString, cell_text);
        QFETCH(double, avg_error);
        QFETCH(QString, avg_error_text);
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(QString, period);
        TrumpetResult r;
        r.trumpet_table[3][min_error_rate] = cell;
        r.trumpet_avg_rate = 99.05;
        r.trumpet_avg_error = avg_error;
        const TrumpetSummaryTexts t = trumpet_summary_texts(r, 99, std::int16_t(start), std::int16_t(end));
        QCOMPARE(QString::fromStdString(t.min_error_rate[3]), cell_text);
        QCOMPARE(QString::fromStdString(t.min_error_rate[2]), QString("0.00"));
        QCOMPARE(QString::fromStdString(t.avg_error), avg_error_text);
        QCOMPARE(QString::fromStdString(t.analysis_period), period);
    }

    // The printed page: cells after blanks judged on the formatted value's
    // sign, and the analysis line in its two forms.
    void page_data() {
        QTest::addColumn<float>("percent");  // max_error_percent of the first row
        QTest::addColumn<float>("rate");     // max_error_rate of the first row
        QTest::addColumn<QString>("cells");  // the start of the maximum line
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("period");
        QTest::newRow("negative") << -5.149223f << -0.25f << "    -05.15   -00.25" << 120
                                  << "Analysis Period:  60 min -  From 60 to 120 min";
        QTest::newRow("zero is not negative") << 0.0f << 123.456f << "     00.00    123.46" << 120
                                              << "Analysis Period:  60 min -  From 60 to 120 min";
        QTest::newRow("a tiny negative formats to zero") << -0.001f << -0.004f << "     -00.00    -00.00" << 59
                                                         << "Analysis Period:  59 min  -  From 0 to 59 min";
    }
    void page() {
        QFETCH(float, percent);
        QFETCH(float, rate);
        QFETCH(QString, cells);
        QFETCH(int, end);
        QFETCH(QString, period);
        TrumpetResult r;
        r.trumpet_table[0][max_error_percent] = percent;
        r.trumpet_table[0][max_error_rate] = rate;
        const std::int16_t start = end >= 60 ? 60 : 0;
        const TrumpetPageTexts t = trumpet_page_texts({&r, 99, 60, start, std::int16_t(end), 30, "A.LOG"});
        QCOMPARE(QString::fromStdString(t.table[3]).left(cells.size()), cells);
        QCOMPARE(QString::fromStdString(t.figures[3]), period);
    }

    // kyt-tool trumpet chooses as the dialog does: without options what it
    // opens on, else the entries named; what the lists do not offer is
    // refused. Its table is the core's (the live run to the trumpet compares
    // it with the form's).
    void tool_data() {
        QTest::addColumn<QString>("log");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<QString>("printed");  // "interval start end base_rate avg_rate", or the error
        const QString log = "single_rate_130min.log";
        QTest::newRow("the dialog's defaults") << log << QStringList{} << 0 << "60 60 120 99 99.05";
        QTest::newRow("a chosen start") << log << QStringList{"--length", "60", "--start", "30"} << 0 << "60 30 90 99 99.05";
        QTest::newRow("a start from the dialog's own list") << log << QStringList{"--start", "0"} << 0 << "60 0 60 99 99.05";
        QTest::newRow("all at 30 s") << log << QStringList{"--length", "all", "--start", "0", "--interval", "30"} << 0
                                     << "30 0 130 99 99.05";
        QTest::newRow("another base rate") << log << QStringList{"--rate", "100.5"} << 0 << "60 60 120 100.5 99.05";
        QTest::newRow("occlusion log") << "occlusion.log" << QStringList{} << 1 << "Occlusion Pressure test Graph not implemented";
        QTest::newRow("under an hour") << "single_rate_45min.log" << QStringList{} << 1 << "Insufficient data for Trumpet Graph";
        QTest::newRow("interval 45") << log << QStringList{"--interval", "45"} << 2 << "kyt-tool trumpet: --interval is 30 or 60";
        QTest::newRow("length not offered") << log << QStringList{"--length", "90"} << 2
                                            << "kyt-tool trumpet: --length is one of 60 120 All";
        QTest::newRow("start not offered") << log << QStringList{"--start", "45"} << 2
                                           << "kyt-tool trumpet: --start is one of 0 30 60 with this length";
        QTest::newRow("start with all") << log << QStringList{"--length", "all", "--start", "30"} << 2
                                        << "kyt-tool trumpet: --start is 0 with this length";
        QTest::newRow("rate 0") << log << QStringList{"--rate", "0"} << 2 << "kyt-tool trumpet: --rate takes a number other than 0";
    }
    void tool() {
        QFETCH(QString, log);
        QFETCH(QStringList, options);
        QFETCH(int, exit_code);
        QFETCH(QString, printed);
        const ToolRun r = run_kyt_tool(QStringList{"trumpet", graph_data(log)} + options);
        QCOMPARE(r.exit_code, exit_code);
        QStringList values;
        for (const char* key : {"interval", "start", "end", "base_rate", "avg_rate"}) values << r.values.value(key);
        QCOMPARE(exit_code == 0 ? values.join(' ') : r.error.split('\n').first(), printed);
    }
};

QTEST_GUILESS_MAIN(tst_trumpet_settings)
#include "tst_trumpet_settings.moc"
