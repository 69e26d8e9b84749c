// How a report file is laid out on the printer: page marks, form feeds and
// the file's name written over the page heading.

#include <QtTest>

#include "reports/report_file.h"

using namespace kyt;

namespace {

// The steps as one line each: "| text" a line, "--" a new page.
QStringList described(const std::vector<PrintStep>& steps) {
    QStringList out;
    for (const PrintStep& s : steps)
        out << (s.kind == PrintStep::new_page ? QString("--") : "| " + QString::fromStdString(s.text));
    return out;
}

QString mark(int page) { return QString(67, ' ') + QString("p. %1").arg(page, 2, 10, QChar('0')); }

}  // namespace

class tst_report_file : public QObject {
    Q_OBJECT
private slots:
    void print_steps_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("steps");
        QTest::newRow("first page mark: the name over it, no page")
            << mark(1) + "\r\n" << "a.log" << QStringList{"| " + mark(1).replace(8, 16, "Filename:  a.log")};
        QTest::newRow("later page mark: a new page, the mark kept right of the name")
            << "x\r\n" + mark(2) + "\r\n" << "a.log"
            << QStringList{"| x", "--", "| " + mark(2).replace(8, 16, "Filename:  a.log")};
        QTest::newRow("a long name stops at 60 characters")
            << mark(3) + "\r\n" << QString(70, 'n')
            << QStringList{"--", "| " + mark(3).replace(8, 60, "Filename:  " + QString(49, 'n'))};
        QTest::newRow("p. inside a word counts, and never writes past the line")
            << "Temp. 20\r\n" << "long-name.log" << QStringList{"--", "| Temp. 20"};
        QTest::newRow("a form feed outside a summary is left to the printer")
            << "LOG\r\n\f\r\nnext\r\n" << "a.log" << QStringList{"| LOG", "| \f", "| next"};
        QTest::newRow("form feeds of a summary open numbered pages")
            << "x\f\r\n SUMMARY\r\n\f\r\n\f\r\n" << "s.sum"
            << QStringList{"| x\f", "|  SUMMARY",
                           "--", "| ", "| " + QString(66, ' ') + "p. 2", "| ", "|         Filename s.sum", "| \f",
                           "--", "| ", "| " + QString(66, ' ') + "p. 3", "| ", "|         Filename s.sum", "| \f"};
    }
    void print_steps() {
        QFETCH(QString, text);
        QFETCH(QString, name);
        QFETCH(QStringList, steps);
        QCOMPARE(described(report_print_steps(text.toStdString(), name.toStdString())), steps);
    }
};

QTEST_MAIN(tst_report_file)
#include "tst_report_file.moc"
