#include <QtTest>

#include "trumpet/trumpet_settings.h"

using namespace kyt;

namespace {

QString joined(const std::vector<std::string>& v) {
    QStringList l;
    for (const auto& s : v) l << QString::fromStdString(s);
    return l.join(' ');
}

QString steps(int from, int to, int by) {
    QStringList l;
    for (int v = from; v <= to; v += by) l << QString::number(v);
    return l.join(' ');
}

}  // namespace

class tst_trumpet_settings : public QObject {
    Q_OBJECT
private slots:
    void guard_data() {
        QTest::addColumn<double>("last_time");
        QTest::addColumn<bool>("refused");
        QTest::newRow("just under an hour") << 59.99 << true;
        QTest::newRow("an hour") << 60.0 << false;
    }
    void guard() {
        QFETCH(double, last_time);
        QFETCH(bool, refused);
        LogSeries s;
        s.graph_time = {0, 1, 2, last_time};
        s.graph_last_index = 3;
        const auto m = check_trumpet_data(s);
        QCOMPARE(m.has_value(), refused);
        if (refused)
            QCOMPARE(*m, (BoxMessage{"Insufficient data for Trumpet Graph", "Data Error", box_exclamation}));
    }

    // What the dialog holds when it opens on a log of L minutes.
    void load_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<QString>("starts");
        QTest::addColumn<int>("start_selected");
        QTest::addColumn<QString>("lengths");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("end");
        QTest::newRow("600 minutes") << 600.0 << steps(0, 510, 30) << 2 << steps(60, 540, 60) + " All" << 60 << 60
                                     << 120;
        QTest::newRow("60 minutes") << 60.0 << "0" << 0 << "All" << 0 << 60 << 60;
        QTest::newRow("59.5 minutes") << 59.5 << "0" << 0 << "All" << 0 << 59 << 59;
        QTest::newRow("just over 120") << 120.01 << "0 30 60" << 2 << "60 120 All" << 60 << 60 << 120;
        // Above 60 and up to 120 minutes the wanted start entry (1 or 2) is
        // missing; the last one that exists is selected.
        QTest::newRow("60.5: one start") << 60.5 << "0" << 0 << "60 All" << 0 << 60 << 60;
        QTest::newRow("90: one start") << 90.0 << "0" << 0 << "60 All" << 0 << 60 << 60;
        QTest::newRow("90.5: two starts") << 90.5 << "0 30" << 1 << "60 All" << 30 << 60 << 90;
        QTest::newRow("120: two starts") << 120.0 << "0 30" << 1 << "60 All" << 30 << 60 << 90;
    }
    void load() {
        QFETCH(double, L);
        QFETCH(QString, starts);
        QFETCH(int, start_selected);
        QFETCH(QString, lengths);
        QFETCH(int, start);
        QFETCH(int, length);
        QFETCH(int, end);
        const TrumpSetLoad d = trumpset_load(L);
        QCOMPARE(joined(d.choice.start_entries), starts);
        QCOMPARE(d.choice.start_selected, start_selected);
        QCOMPARE(joined(d.length_entries), lengths);
        QCOMPARE(d.length_selected, 0);
        QCOMPARE(int(d.choice.trumpet_start_time), start);
        QCOMPARE(int(d.choice.calculation_length), length);
        QCOMPARE(int(d.choice.trumpet_end_time), end);
        QCOMPARE(d.interpolation_interval, 60.0);
        QCOMPARE(int(d.trumpet_default_marker), 30);
    }

    // Choosing a length rebuilds the start list.
    void choose_length_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("starts");
        QTest::addColumn<int>("selected");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("end");
        QTest::newRow("600, 60") << 600.0 << "60" << steps(0, 510, 30) << 2 << true << 60 << 60 << 120;
        QTest::newRow("600, 540: two starts") << 600.0 << "540" << "0 30" << 1 << true << 30 << 540 << 570;
        QTest::newRow("100, 60: two starts") << 100.0 << "60" << "0 30" << 1 << true << 30 << 60 << 90;
        QTest::newRow("121, 120: one start") << 121.0 << "120" << "0" << 0 << true << 0 << 120 << 120;
        QTest::newRow("600, All") << 600.0 << "All" << "0" << 0 << false << 0 << 600 << 600;
        QTest::newRow("75.6, All: 75.5 rounds up") << 75.6 << "All" << "0" << 0 << false << 0 << 76 << 76;
        QTest::newRow("76.6, All: 76.5 rounds to even") << 76.6 << "All" << "0" << 0 << false << 0 << 76 << 76;
        QTest::newRow("77.5, All: a half stays") << 77.5 << "All" << "0" << 0 << false << 0 << 77 << 77;
    }
    void choose_length() {
        QFETCH(double, L);
        QFETCH(QString, entry);
        QFETCH(QString, starts);
        QFETCH(int, selected);
        QFETCH(bool, enabled);
        QFETCH(int, start);
        QFETCH(int, length);
        QFETCH(int, end);
        const StartChoice c = kyt::choose_length(L, entry.toStdString());
        QCOMPARE(joined(c.start_entries), starts);
        QCOMPARE(c.start_selected, selected);
        QCOMPARE(c.start_enabled, enabled);
        QCOMPARE(int(c.trumpet_start_time), start);
        QCOMPARE(int(c.calculation_length), length);
        QCOMPARE(int(c.trumpet_end_time), end);
    }

    // Default selects length entry 0 and start entry 2: 60 minutes from
    // minute 60, on logs above 120 minutes only.
    void default_button_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<bool>("acts");
        QTest::newRow("120") << 120.0 << false;
        QTest::newRow("120.5") << 120.5 << true;
    }
    void default_button() {
        QFETCH(double, L);
        QFETCH(bool, acts);
        QCOMPARE(default_applies(L), acts);
        if (!acts) return;
        const TrumpSetLoad d = trumpset_load(L);
        const StartChoice c = kyt::choose_length(L, d.length_entries[default_length_entry]);
        QCOMPARE(c.start_entries[default_start_entry], std::string("60"));
        QCOMPARE(int(c.calculation_length), 60);
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
        QTest::newRow("negative cell") << -5.149223f << "-5.15" << 0.0 << "% Error:  0.000" << 0 << 59
                                       << "Analysis Period:  59 min  -  From 0 to 59 min";
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
        QCOMPARE(QString::fromStdString(t.set_rate), QString("Base Rate:  99 ml/hr"));
        QCOMPARE(QString::fromStdString(t.avg_rate), QString("Avg Rate:  99.05 ml/hr"));
    }

    // The printed page: cells after blanks judged on the formatted value's
    // sign, and the analysis line in its two forms.
    void page_data() {
        QTest::addColumn<float>("percent");  // max_error_percent of the first row
        QTest::addColumn<float>("rate");     // max_error_rate of the first row
        QTest::addColumn<QString>("cells");  // the start of the maximum line
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("period");
        QTest::newRow("positive") << 5.088281f << 12.5f << "     05.09    12.50" << 120
                                  << "Analysis Period:  60 min -  From 60 to 120 min";
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
        QCOMPARE(QString::fromStdString(t.figures[4]), QString("Data Interpolation Interval: 30sec"));
        QCOMPARE(QString::fromStdString(t.file_line), QString("File name:  a.log"));
    }
};

QTEST_APPLESS_MAIN(tst_trumpet_settings)
#include "tst_trumpet_settings.moc"
