// Every number the console writes into a file or reads from one uses the
// decimal point, whatever locale the program runs in: the console's windows
// set the C library to the user's locale, and a German one wants a comma.

#include <QtTest>

#include <clocale>
#include <cstdio>
#include <functional>

#include "acquisition/logformat.h"
#include "common/numbers.h"
#include "graph/log_reader.h"
#include "reports/csv_convert.h"
#include "support/test_data.h"

using namespace kyt;

namespace {

std::string figures(const LogSeries& s) {
    std::string out;
    for (double v : {s.max_flow, s.min_flow, s.final_avg_flow, s.max_volume, s.base_rate, s.graph_time.back(),
                     s.graph_volume.back()})
        out += shortest_text(v) + " ";
    return out;
}

const std::vector<std::pair<const char*, std::function<std::string()>>>& pieces() {
    static const std::vector<std::pair<const char*, std::function<std::string()>>> p = {
        {"log rows",
         [] {
             return single_rate_row({0, 1, 30, 99.95, 100.125, 2.5, 12}) + occlusion_row({3, 5, 12.34, 638.2}) +
                    format_by_size(12.345);
         }},
        {"general numbers and pictures",
         [] { return general_number(12.5) + " " + general_number(1.5e20) + " " + format_picture(0.0512, "0.00%"); }},
        {"numbers read", [] { return shortest_text(leading_number("12.5 ml/h")) + " " + shortest_text(*numeric_value(" 2.25D1 ")); }},
        {"log reader", [] { return figures(read_log(test_data("logs/single_rate.log")).series); }},
        {"spreadsheet conversion", [] { return convert_log_text(test_data("logs/single_rate.log")).csv; }},
    };
    return p;
}

}  // namespace

class tst_locale : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        QVERIFY2(std::setlocale(LC_ALL, "de_DE.UTF-8"), "the German locale is missing (package locales-all)");
        char buf[16];
        std::snprintf(buf, sizeof buf, "%.1f", 1.5);
        QCOMPARE(QByteArray(buf), QByteArray("1,5"));
        std::setlocale(LC_ALL, "C");
    }

    void same_as_in_c_locale_data() {
        QTest::addColumn<int>("piece");
        for (std::size_t i = 0; i < pieces().size(); ++i) QTest::newRow(pieces()[i].first) << int(i);
    }
    void same_as_in_c_locale() {
        QFETCH(int, piece);
        const auto& make = pieces()[std::size_t(piece)].second;
        std::setlocale(LC_ALL, "C");
        const std::string plain = make();
        std::setlocale(LC_ALL, "de_DE.UTF-8");
        const std::string german = make();
        std::setlocale(LC_ALL, "C");
        QVERIFY(!plain.empty());
        QCOMPARE(QString::fromStdString(german), QString::fromStdString(plain));
    }
};

QTEST_APPLESS_MAIN(tst_locale)
#include "tst_locale.moc"
