#include <QtTest>

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

    // The labels' text with each (from, to) pair of `edits` written over it.
    void fields_data() {
        QTest::addColumn<ReportRec>("rec");
        QTest::addColumn<QStringList>("edits");
        ReportRec over;
        over.manufacturer = "Northfield Infusion Systems";
        over.model = "VP-7";
        QTest::newRow("blanks around: the trimmed text is written")
            << rec_with(&ReportRec::manufacturer, "  Acme  ") << QStringList{"Manufacturer: ____", "Manufacturer: Acme"};
        QTest::newRow("longer than the gap runs on") << rec_with(&ReportRec::location, "Ward 3 North")
                                                     << QStringList{"Location: ________\r\nSe", "Location: Ward 3 North"};
        QTest::newRow("rate of blanks writes nothing") << rec_with(&ReportRec::set_rates, "   ") << QStringList{};
        // The model's label is overwritten first, so the model lands at its
        // offset from the start of the text.
        QTest::newRow("a label run over") << over
            << QStringList{"Manufacturer: ____________ Model: _______", "Manufacturer: Northfield Infusion Systems",
                           "       ANA", "      VP-7"};
    }
    void fields() {
        QFETCH(ReportRec, rec);
        QFETCH(QStringList, edits);
        std::string expected = labels;
        for (int i = 0; i + 1 < edits.size(); i += 2) {
            const std::size_t at = expected.find(edits[i].toStdString());
            QVERIFY(at != std::string::npos);
            expected.replace(at, edits[i].size(), edits[i + 1].toStdString());
        }
        QCOMPARE(QString::fromStdString(replace_header(labels, rec, '1')), QString::fromStdString(expected));
    }

    // Without a "Comment:" label the comment gets a line behind the title,
    // cut at the line's end.
    void comment_line() {
        ReportRec rec;
        rec.comment = std::string(60, 'c');
        const std::string text = title + "\r\nSerial No.: ____\r\n";
        const std::string expected = title + "\r\n        Comment: " + std::string(54, 'c') + "\r\nSerial No.: ____\r\n";
        QCOMPARE(QString::fromStdString(replace_header(text, rec, '3')), QString::fromStdString(expected));
    }

    void flow_error_data() {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("rate");
        QTest::addColumn<QString>("average_line");
        QTest::addColumn<QString>("error");
        QTest::newRow("ten per cent") << "1" << "10" << "Average Rate: 11.00 ml/h" << "10.00%";
        QTest::newRow("rate not a number") << "1" << "fast" << "Average Rate: 5 ml/h" << "0.00%";
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
};

QTEST_APPLESS_MAIN(tst_header_replace)
#include "tst_header_replace.moc"
