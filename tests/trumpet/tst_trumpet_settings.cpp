#include <QtTest>

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

QString window_of(const StartChoice& c) {
    return QString("%1+%2=%3").arg(c.trumpet_start_time).arg(c.calculation_length).arg(c.trumpet_end_time);
}

}  // namespace

class tst_trumpet_settings : public QObject {
    Q_OBJECT
private slots:
    // A log is analysed from an hour on (the form's test sees the box).
    void guard() {
        LogSeries s;
        s.graph_time = {0, 59.99};
        s.graph_last_index = 1;
        QVERIFY(check_trumpet_data(s));
        s.graph_time[1] = 60;
        QVERIFY(!check_trumpet_data(s));
    }

    // The dialog on a log of L minutes: the start list (selection in brackets),
    // the lengths, and start+length=end.
    void load_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<QString>("load");
        QTest::newRow("60 minutes") << 60.0 << "[0] | All | 0+60=60";
        QTest::newRow("59.5 minutes") << 59.5 << "[0] | All | 0+59=59";
        // Up to 120 minutes the wanted start entry is missing; the last one is selected.
        QTest::newRow("60.5: one start") << 60.5 << "[0] | 60 All | 0+60=60";
        QTest::newRow("90.5: two starts") << 90.5 << "0 [30] | 60 All | 30+60=90";
        QTest::newRow("120: two starts") << 120.0 << "0 [30] | 60 All | 30+60=90";
        QTest::newRow("just over 120") << 120.01 << "0 30 [60] | 60 120 All | 60+60=120";
    }
    void load() {
        QFETCH(double, L);
        QFETCH(QString, load);
        const TrumpSetLoad d = trumpset_load(L);
        QCOMPARE(joined(d.choice.start_entries, d.choice.start_selected) + " | " + joined(d.length_entries) + " | " +
                     window_of(d.choice), load);
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

    // A cell and the analysis period on the screen and on the printed page.
    // A single-precision half is taken as the decimal it stands for; a page
    // cell's sign is read from its formatted text; below minute 60 the end
    // stands as the length.
    void texts_data() {
        QTest::addColumn<float>("cell");
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QString>("page");  // the start of the page's maximum line
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("screen_period");
        QTest::addColumn<QString>("page_period");
        QTest::newRow("an hour from minute 60") << 5.088281f << "5.09" << "     05.09" << 60 << 120
                                               << "60 min  -  From 60 to 120 min" << "60 min -  From 60 to 120 min";
        QTest::newRow("single 0.145") << 0.145f << "0.15" << "     00.15" << 0 << 60 << "60 min  -  From 0 to 60 min"
                                      << "60 min -  From 0 to 60 min";
        QTest::newRow("negative, end below 60") << -5.149223f << "-5.15" << "    -05.15" << 30 << 50
                                                << "50 min  -  From 30 to 50 min" << "50 min  -  From 30 to 50 min";
        QTest::newRow("a tiny negative formats to zero") << -0.001f << "-0.00" << "     -00.00" << 0 << 59
                                                         << "59 min  -  From 0 to 59 min" << "59 min  -  From 0 to 59 min";
    }
    void texts() {
        QFETCH(float, cell);
        QFETCH(QString, screen);
        QFETCH(QString, page);
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(QString, screen_period);
        QFETCH(QString, page_period);
        TrumpetResult r;
        r.trumpet_table[0][max_error_percent] = cell;
        const TrumpetSummaryTexts t = trumpet_summary_texts(r, 99, std::int16_t(start), std::int16_t(end));
        QCOMPARE(QString::fromStdString(t.max_error_percent[0] + " " + t.analysis_period),
                 screen + " Analysis Period:  " + screen_period);
        const TrumpetPageTexts p = trumpet_page_texts({&r, 99, 60, std::int16_t(start), std::int16_t(end), 30, "A.LOG"});
        QCOMPARE(QString::fromStdString(p.table[3]).left(page.size()) + " " + QString::fromStdString(p.figures[3]),
                 page + " Analysis Period:  " + page_period);
    }
};

QTEST_GUILESS_MAIN(tst_trumpet_settings)
#include "tst_trumpet_settings.moc"
