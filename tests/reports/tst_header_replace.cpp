#include <QtTest>

#include "common/text.h"
#include "common/file_text.h"
#include "reports/header_replace.h"

using namespace kyt;

namespace {

// A report head with every label, its title line 30 characters and a CR.
const std::string title = "       ANALYSER TEST SUMMARY  ";
const std::string labels = title + "\r\n" +
                           "Manufacturer: ____________ Model: __________\r\n"
                           "Serial No.: ______________ Control No.: ______\r\n"
                           "Department: ______________ Location: ________\r\n"
                           "Set Rate(s): ______ ml/h VTBI: ______ ml\r\n"
                           "Comment:  ____________________\r\n";

ReportRec rec_with(std::string ReportRec::*field, const char* value) {
    ReportRec r;
    r.*field = value;
    return r;
}

}  // namespace

Q_DECLARE_METATYPE(kyt::ReportRec)

class tst_header_replace : public QObject {
    Q_OBJECT
private slots:
    // Each value at its label's offset; the comment two after its label.
    void every_label_at_its_offset() {
        const ReportRec rec{"Acme", "VP-7", "S1", "C9", "ICU", "W3", "100", "250", "ok", "", "", ""};
        const std::string expected = title + "\r\n" +
                                     "Manufacturer: Acme________ Model: VP-7______\r\n"
                                     "Serial No.: S1____________ Control No.: C9____\r\n"
                                     "Department: ICU___________ Location: W3______\r\n"
                                     "Set Rate(s): 100___ ml/h VTBI: 250___ ml\r\n"
                                     "Comment:  ok__________________\r\n";
        QCOMPARE(QString::fromStdString(replace_header(labels, rec, '1')), QString::fromStdString(expected));
    }

    void fields_data() {
        QTest::addColumn<ReportRec>("rec");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("blanks around: the trimmed text is written")
            << rec_with(&ReportRec::manufacturer, "  Acme  ") << "Manufacturer: ____" << "Manufacturer: Acme";
        QTest::newRow("longer than the gap runs on")
            << rec_with(&ReportRec::location, "Ward 3 North") << "Location: ________\r\n" << "Location: Ward 3 North";
        QTest::newRow("rate of blanks writes nothing")
            << rec_with(&ReportRec::set_rates, "   ") << "Set Rate(s): " << "Set Rate(s): ";
    }
    void fields() {
        QFETCH(ReportRec, rec);
        QFETCH(QString, from);
        QFETCH(QString, to);
        std::string expected = labels;
        const std::size_t at = expected.find(from.toStdString());
        QVERIFY(at != std::string::npos);
        expected.replace(at, to.size(), to.toStdString());
        QCOMPARE(QString::fromStdString(replace_header(labels, rec, '1')), QString::fromStdString(expected));
    }

    // The order is binding: a manufacturer long enough to run over the model's
    // label leaves the model no label, so it lands at the label's offset from
    // the start of the text.
    void order_and_missing_labels() {
        ReportRec rec;
        rec.manufacturer = "Northfield Infusion Systems";
        rec.model = "VP-7";
        const std::string out = replace_header(labels, rec, '1');
        QVERIFY(contains(out, "Manufacturer: Northfield Infusion Systems___\r\n"));
        QCOMPARE(out.substr(6, 4), std::string("VP-7"));
        QCOMPARE(out.size(), labels.size());
    }

    void past_the_end_writes_nothing() {
        ReportRec rec;
        rec.manufacturer = "Acme";
        const std::string tiny = "Comment:";  // too short for the manufacturer's offset
        QCOMPARE(replace_header(tiny, rec, '1'), tiny);
        QCOMPARE(replace_header("", rec, '1'), "\n        Comment: " + std::string(54, '_') + "\r");
    }

    void comment_line_data() {
        QTest::addColumn<QString>("comment");
        QTest::addColumn<QString>("line");
        QTest::newRow("short") << "checked" << "        Comment: checked" + QString(47, '_');
        QTest::newRow("cut at the line's end") << QString(60, 'c') << "        Comment: " + QString(54, 'c');
    }
    // Without a "Comment:" label the comment gets a line of its own behind
    // the title line.
    void comment_line() {
        QFETCH(QString, comment);
        QFETCH(QString, line);
        ReportRec rec;
        rec.comment = comment.toStdString();
        const std::string text = title + "\r\nSerial No.: ____\r\n";
        const std::string expected = title + "\r\n" + line.toStdString() + "\r\nSerial No.: ____\r\n";
        QCOMPARE(QString::fromStdString(replace_header(text, rec, '3')), QString::fromStdString(expected));
    }

    void flow_error_data() {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("rate");
        QTest::addColumn<QString>("average_line");
        QTest::addColumn<QString>("error");
        QTest::newRow("ten per cent") << "1" << "10" << "Average Rate: 11.00 ml/h" << "10.00%";
        QTest::newRow("rate not a number") << "1" << "fast" << "Average Rate: 5 ml/h" << "0.00%";
        QTest::newRow("4 characters before the line end are units") << "1" << "10" << "Average Rate: 11.00"
                                                                     << "-90.00%";
        QTest::newRow("no value: average 0") << "1" << "10" << "Average Rate:" << "-100.00%";
        QTest::newRow("not a downloaded summary") << "3" << "10" << "Average Rate: 11.00 ml/h" << "";
        QTest::newRow("no rate given") << "1" << "" << "Average Rate: 11.00 ml/h" << "";
        QTest::newRow("no average rate") << "1" << "10" << "Mean Rate: 11.00 ml/h" << "";
    }
    void flow_error() {
        QFETCH(QString, mode);
        QFETCH(QString, rate);
        QFETCH(QString, average_line);
        QFETCH(QString, error);
        ReportRec rec;
        rec.set_rates = rate.toStdString();
        const std::string text = labels + average_line.toStdString() + "\r\nVolume: 5 ml\r\n";
        std::string expected = replace_header(labels, rec, '3') + average_line.toStdString() + "\r";
        if (!error.isEmpty()) expected += "              Flow Error:     " + error.toStdString();
        expected += "\nVolume: 5 ml\r\n";
        QCOMPARE(QString::fromStdString(replace_header(text, rec, mode.at(0).toLatin1())),
                 QString::fromStdString(expected));
    }

    void anchor_follows_insertions() {
        const ReportRec rec{"", "", "", "", "", "", "10", "", "x", "", "", ""};
        const std::string text = title + "\r\nAverage Rate: 11.00 ml/h\r\nREST";
        std::size_t rest = text.find("REST"), before = 10;
        const std::string out = replace_header(text, rec, '1', rest);
        QCOMPARE(out.substr(rest), std::string("REST"));
        std::size_t at_start = 0;
        replace_header(text, rec, '1', at_start);
        QCOMPARE(at_start, std::size_t(0));
        replace_header(text, rec, '1', before);
        QCOMPARE(before, std::size_t(10));
    }

    void report_for_header_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("header_wanted");
        QTest::addColumn<QString>("expected");
        const QString report = "REPORT TITLE\r\n        Start of Test\r\n - Date: Nov 3 2026 - Time: 09:05\r\n"
                               "Serial No.: 12\r\n        Set Rate(s): __ ml/h\r\n        VTBI: __ ml\r\n";
        QTest::newRow("true (all bits set) writes nothing: head through Time:, then the 8 before Set")
            << report << -1 << "        Start of Test\r\n - Date: Nov 3 2026 - Time:\r\n\r\n        ";
        QTest::newRow("without Start, Time: or Set the arithmetic runs from the start")
            << "ab\r\ncd" << -1 << "ab\r\n\r\n\r\nab\r\ncd";
        QTest::newRow("value 1 writes rate and volume, and a comment line")
            << "        Start Rate(s): __ VTBI: __ Time: 09:05\r\n        Set Rate\r\n" << 1
            << "        Start Rate(s): 25 VTBI:\r\n        Comment: note" + QString(50, '_') +
                   "\r\n 50 Time:\r\n\r\n        ";
    }
    void report_for_header() {
        QFETCH(QString, text);
        QFETCH(int, header_wanted);
        QFETCH(QString, expected);
        const ReportRec rec{"", "", "", "", "", "", "25", "50", "note", "", "", ""};
        QCOMPARE(QString::fromStdString(
                     kyt::report_for_header(text.toStdString(), rec, static_cast<std::int16_t>(header_wanted))),
                 expected);
    }

    void open_with_file() {
        const QString path = QDir::temp().filePath(QString("kyt-join-%1.log").arg(QCoreApplication::applicationPid()));
        QVERIFY(write_text_file(path.toStdString(), "line one\r\nline two"));
        const std::string report = "        Start of Test - Time: 09:05\r\n        Set Rate";
        const ReportForHeader joined = open_report_for_header(report, {}, -1, "  " + path.toStdString() + " ");
        QFile::remove(path);
        QVERIFY(!joined.message);
        QCOMPARE(joined.report_text, std::string("        Start of Test - Time:\r\n\r\n        line one\r\nline two\r\n"));

        const ReportForHeader cancelled = open_report_for_header(report, {}, -1, "   ");
        QVERIFY(cancelled.message);
        QCOMPARE(cancelled.message->text, std::string_view("Opening file cancelled."));
        QCOMPARE(cancelled.message->title, std::string_view("CANCEL"));
        QCOMPARE(cancelled.message->style, box_exclamation);
        QCOMPARE(cancelled.report_text, std::string("        Start of Test - Time:\r\n\r\n        "));
    }
};

QTEST_APPLESS_MAIN(tst_header_replace)
#include "tst_header_replace.moc"
