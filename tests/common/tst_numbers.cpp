#include <QtTest>

#include "common/numbers.h"
#include "common/text.h"

using namespace kyt;

class tst_numbers : public QObject {
    Q_OBJECT
private slots:
    void picture_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("picture");
        QTest::addColumn<QString>("expected");
        QTest::newRow("small flow") << 9.999 << "0.000" << "9.999";
        QTest::newRow("ten") << 10.0 << "00.00" << "10.00";
        QTest::newRow("rounds into a sixth character") << 999.96 << "000.0" << "1000.0";
        QTest::newRow("thousand") << 1000.0 << "0000" << "1000";
        QTest::newRow("page one") << 1.0 << "00" << "01";
        QTest::newRow("page hundred has no maximum") << 100.0 << "00" << "100";
        QTest::newRow("half away from zero") << 2.5 << "0" << "3";
        QTest::newRow("binary near-half taken at 15 digits") << 1.005 << "0.00" << "1.01";
        QTest::newRow("negative keeps the sign") << -5.0 << "00.00" << "-05.00";
        QTest::newRow("negative small flow") << -0.5 << "0.000" << "-0.500";
        QTest::newRow("zero") << 0.0 << "0.000" << "0.000";
        QTest::newRow("percent") << 0.0123 << "0.00%" << "1.23%";
        QTest::newRow("negative percent") << -0.05 << "0.00%" << "-5.00%";
        QTest::newRow("tiny rounds to zero") << 0.0004 << "0.000" << "0.000";
        QTest::newRow("large") << 123456789.0 << "0000" << "123456789";
        QTest::newRow("carry into new digit") << 9.9996 << "0.000" << "10.000";
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
        QTest::newRow("half") << 12.5 << "12.5";
        QTest::newRow("whole") << 3.0 << "3";
        QTest::newRow("zero") << 0.0 << "0";
        QTest::newRow("negative") << -0.25 << "-0.25";
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

    void leading_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("expected");
        QTest::newRow("plain") << "12.5" << 12.5;
        QTest::newRow("leading blanks") << "   7" << 7.0;
        QTest::newRow("blanks inside are skipped") << "1 2" << 12.0;
        QTest::newRow("stops at a letter") << "42abc" << 42.0;
        QTest::newRow("no number") << "abc" << 0.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("sign") << "-3.5" << -3.5;
        QTest::newRow("exponent") << "1E3" << 1000.0;
        QTest::newRow("D exponent") << "2D2" << 200.0;
        QTest::newRow("dangling exponent") << "5E" << 5.0;
        QTest::newRow("comma ends") << "1,000" << 1.0;
        QTest::newRow("hex") << "&H1F" << 31.0;
        QTest::newRow("octal") << "&O17" << 15.0;
        QTest::newRow("point only") << "." << 0.0;
        QTest::newRow("leading point") << ".5" << 0.5;
        QTest::newRow("question mark") << "?ab" << 0.0;
    }
    void leading() {
        QFETCH(QString, text);
        QFETCH(double, expected);
        QCOMPARE(leading_number(text.toStdString()), expected);
    }

    void rounding_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("expected");
        QTest::addColumn<bool>("fits");
        QTest::newRow("half down to even") << 2.5 << 2 << true;
        QTest::newRow("half up to even") << 3.5 << 4 << true;
        QTest::newRow("negative half") << -2.5 << -2 << true;
        QTest::newRow("plain") << 2.6 << 3 << true;
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
        QCOMPARE(format_date(t, "mmm d yyyy"), std::string("Nov 3 2026"));
        QCOMPARE(format_date(t, "hh:mm"), std::string("09:05"));
        QCOMPARE(format_date(t, "dddd, mmm d yyyy"), std::string("Tuesday, Nov 3 2026"));
    }

    void text_data() {
        QTest::addColumn<QString>("blank");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty value keeps the blank") << "_____" << "" << "_____";
        QTest::newRow("short value") << "_____" << "ab" << "ab___";
        QTest::newRow("exact width") << "_____" << "abcde" << "abcde";
        QTest::newRow("too long is cut") << "___" << "abcdef" << "abc";
    }
    void text() {
        QFETCH(QString, blank);
        QFETCH(QString, value);
        QFETCH(QString, expected);
        QCOMPARE(QString::fromStdString(replace_underlined_field(blank.toStdString(), value.toStdString())), expected);
    }

    void positions() {
        QCOMPARE(find1("abcabc", "c"), std::size_t(3));
        QCOMPARE(find1("abcabc", "c", 4), std::size_t(6));
        QCOMPARE(find1("abc", "x"), std::size_t(0));
        QCOMPARE(mid("abcdef", 2, 3), std::string("bcd"));
        QCOMPARE(mid("abc", 5, 1), std::string());
        QCOMPARE(trim("  a b  "), std::string("a b"));
        QCOMPARE(split_lines("a\r\nb\nc").size(), std::size_t(3));
        QCOMPARE(split_lines("a\r\n").size(), std::size_t(1));
    }
};

QTEST_APPLESS_MAIN(tst_numbers)
#include "tst_numbers.moc"
