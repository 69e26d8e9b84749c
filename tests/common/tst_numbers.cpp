// The number and text helpers; numbers in files keep the decimal point in any locale (a German one wants a comma).

#include <QtTest>

#include <clocale>
#include <cstdio>
#include <limits>

#include "acquisition/logformat.h"
#include "common/numbers.h"
#include "common/text.h"
#include "graph/log_reader.h"
#include "reports/csv_convert.h"
#include "support/test_data.h"

using namespace kyt;

namespace {

// What the console writes into files and reads from them in the locale in force.
QStringList numbers_in_files() {
    const std::string log = test_data("logs/single_rate.log");
    const LogSeries s = read_log(log).series;
    std::string text = single_rate_row({0, 1, 30, 99.95, 100.125, 2.5, 12}) + occlusion_row({3, 5, 12.34, 638.2}) +
                       format_by_size(12.345) + general_number(1.5e20) + format_picture(0.0512, "0.00%") +
                       shortest_text(*numeric_value(" 2.25D1 ")) + shortest_text(leading_number("12.5 ml/h"));
    for (double v : {s.max_flow, s.final_avg_flow, s.graph_time.back()}) text += shortest_text(v) + " ";
    return {QString::fromStdString(text), QString::fromStdString(convert_log_text(log).csv)};
}

const double inf = std::numeric_limits<double>::infinity();

}  // namespace

class tst_numbers : public QObject {
    Q_OBJECT
private slots:
    void picture_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("picture");
        QTest::addColumn<QString>("expected");
        QTest::newRow("rounds into a sixth character") << 999.96 << "000.0" << "1000.0";
        QTest::newRow("half away from zero") << 2.5 << "0" << "3";
        QTest::newRow("binary near-half taken at 15 digits") << 1.005 << "0.00" << "1.01";
        QTest::newRow("negative keeps the sign") << -5.0 << "00.00" << "-05.00";
        QTest::newRow("percent") << 0.0123 << "0.00%" << "1.23%";
        QTest::newRow("percent beyond a double (found by fuzzing)") << 1e307 << "0.00%" << "Inf%";
    }
    void picture() {
        QFETCH(double, value);
        QFETCH(QString, picture);
        QFETCH(QString, expected);
        QCOMPARE(QString::fromStdString(format_picture(value, picture.toStdString())), expected);
    }

    void general_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");
        QTest::newRow("fifteen digits") << 0.1 + 0.2 << "0.3";
        QTest::newRow("large") << 1.5e20 << "1.5E+20";
        QTest::newRow("small") << 1e-7 << "1E-07";
    }
    void general() {
        QFETCH(double, value);
        QFETCH(QString, expected);
        QCOMPARE(QString::fromStdString(general_number(value)), expected);
        QCOMPARE(leading_number(general_number(value)), std::stod(expected.toStdString()));
    }

    // A text's leading number (blanks anywhere passed over) and the whole text as one (blanks around; NaN: not one).
    void reading_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("leading");
        QTest::addColumn<double>("whole");
        const double no = qQNaN();
        QTest::newRow("blanks") << "  1 2" << 12.0 << no;
        QTest::newRow("blanks around") << " \t25 " << 25.0 << 25.0;
        QTest::newRow("no number") << "abc" << 0.0 << no;
        QTest::newRow("D exponent") << "-2D2" << -200.0 << -200.0;
        QTest::newRow("dangling exponent") << "5E" << 5.0 << no;
        QTest::newRow("number then letter") << "25x" << 25.0 << no;
        QTest::newRow("hex") << "&H1F" << 31.0 << no;
        QTest::newRow("beyond a double") << "1E999" << inf << no;
        // Found by fuzzing: beyond a double's range the first significant digit tells the size, not leading zeros.
        QTest::newRow("zero before digits beyond a double") << "0" + QString(400, '9') << inf << no;
        QTest::newRow("digits beyond a double despite a negative exponent") << "1" + QString(400, '0') + "E-10" << inf << no;
        QTest::newRow("digits below a double despite a positive exponent") << "0." + QString(400, '0') + "1E5" << 0.0 << 0.0;
    }
    void reading() {
        QFETCH(QString, text);
        QFETCH(double, leading);
        QFETCH(double, whole);
        QCOMPARE(leading_number(text.toStdString()), leading);
        QCOMPARE(numeric_value(text.toStdString()).value_or(qQNaN()), whole);
    }

    void rounding_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("expected");
        QTest::addColumn<bool>("fits");
        QTest::newRow("half up to even") << 3.5 << 4 << true;
        QTest::newRow("negative half") << -2.5 << -2 << true;
        QTest::newRow("top") << 32767.4 << 32767 << true;
        QTest::newRow("over the top") << 32767.5 << 0 << false;
        QTest::newRow("bottom") << -32768.0 << -32768 << true;
        QTest::newRow("under the bottom") << -32769.0 << 0 << false;
    }
    void rounding() {
        QFETCH(double, value);
        QFETCH(int, expected);
        QFETCH(bool, fits);
        const auto r = to_int16(value);
        QCOMPARE(r.has_value(), fits);
        if (fits) QCOMPARE(int(*r), expected);
    }

    void dates() {
        const CivilTime t{2026, 11, 3, 9, 5, 7, 2};
        QCOMPARE(format_date(t, "hh:mm"), std::string("09:05"));
        QCOMPARE(format_date(t, "dddd, mmm d yyyy"), std::string("Tuesday, Nov 3 2026"));
    }

    void text_helpers() {
        QCOMPARE(replace_underlined_field("_____", "ab"), std::string("ab___"));
        QCOMPARE(replace_underlined_field("___", "abcdef"), std::string("abc"));
        QCOMPARE(find1("abcabc", "c", 4), std::size_t(6));
        QCOMPARE(find1("abc", "x"), std::size_t(0));
        QCOMPARE(mid("abcdef", 2, 3), std::string("bcd"));
        QCOMPARE(mid("abc", 3, 5), std::string("c"));  // a start on the last character
        QCOMPARE(mid("abc", 4, 1), std::string());
        QCOMPARE(trim("  a b  "), std::string("a b"));
        QCOMPARE(split_lines("a\r\nb\nc").size(), std::size_t(3));
        QCOMPARE(split_lines("a\r\n").size(), std::size_t(1));
    }

    void same_in_a_german_locale() {
        std::setlocale(LC_ALL, "C");
        const QStringList plain = numbers_in_files();
        QVERIFY2(std::setlocale(LC_ALL, "de_DE.UTF-8"), "the German locale is missing (package locales-all)");
        char comma[16];
        std::snprintf(comma, sizeof comma, "%.1f", 1.5);
        const QStringList german = numbers_in_files();
        std::setlocale(LC_ALL, "C");
        QCOMPARE(QByteArray(comma), QByteArray("1,5"));
        QVERIFY(!plain.contains(QString()));
        QCOMPARE(german, plain);
    }
};

QTEST_APPLESS_MAIN(tst_numbers)
#include "tst_numbers.moc"
