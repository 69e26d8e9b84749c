// The printer, through real PDF files read back with poppler's tools: text,
// fonts, positions, pages and orientation; a chart drawn into a rectangle of
// a page; and what the user is told about the PDF file.

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>

#include "common/chart.h"
#include "common/message_boxes.h"
#include "common/printer.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "support/full_disk.h"
#include "support/pdf_printer.h"
#include "support/pdf_text.h"
#include "support/scripted_boxes.h"

using namespace kyt;

namespace {

constexpr double margin_inches = 0.25;  // the PDF page's printable area starts here

using test::FileSizeLimit;
using namespace kyt::test;

// Carries out a job written as steps: "L:text" a line, "P:text" text on the
// line, "Z" next print zone, "X:inches", "N" new page, "O:landscape",
// "F:name:points[:b][:i]" a font.
void carry_out(Printer& printer, const QStringList& steps) {
    for (const QString& step : steps) {
        const QString arg = step.section(':', 1);
        switch (step.at(0).toLatin1()) {
            case 'L': QVERIFY(printer.print_line(ss(arg))); break;
            case 'P': QVERIFY(printer.print(ss(arg))); break;
            case 'Z': printer.next_zone(); break;
            case 'X': printer.set_x(arg.toDouble()); break;
            case 'N': QVERIFY(printer.new_page()); break;
            case 'O': printer.set_orientation(arg == "landscape" ? PageOrientation::landscape : PageOrientation::portrait); break;
            case 'F': {
                const QStringList f = arg.split(':');
                printer.set_font_name(ss(f.value(0)));
                printer.set_font_size(f.value(1).toDouble());
                printer.set_bold(f.contains("b"));
                printer.set_italic(f.contains("i"));
                break;
            }
        }
    }
}

void fill_chart(Chart& chart) {
    chart.set_title("Trumpet Graph");
    chart.set_set_count(3);
    chart.set_legend_text(1, "Max");
    chart.set_legend_text(2, "Min");
    chart.set_legend_text(3, "Average");
    chart.set_range(ChartAxis::left, -15, 15);
    chart.set_tick_divisions(ChartAxis::left, 3);
    chart.set_range(ChartAxis::x, 0, 32);
    chart.set_tick_step(ChartAxis::x, 4, 4);
    chart.set_axis_title(ChartAxis::x, "Observation Period(minutes)");
    chart.set_axis_title(ChartAxis::left, "Error(%)");
    const double minutes[] = {2, 5, 11, 19, 31};
    for (int i = 0; i < 5; ++i) {
        chart.add_point(1, minutes[i], 9.0 / (i + 1));
        chart.add_point(2, minutes[i], -8.0 / (i + 1));
        chart.add_point(3, minutes[i], 0.4);
    }
    chart.draw_now();
}

}  // namespace

class TestPrinter : public QObject {
    Q_OBJECT

private slots:
    void job_to_pdf_data();
    void job_to_pdf();
    void chart_into_rectangle_data();
    void chart_into_rectangle();
    void pdf_file_told_data();
    void pdf_file_told();
};

void TestPrinter::job_to_pdf_data() {
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<int>("pages");  // 0: more than one
    QTest::addColumn<bool>("landscape");
    QTest::addColumn<QStringList>("words");  // "page:x inches:word"; page 0 the last, x -1 anywhere
    QTest::addColumn<QString>("font");       // as embedded in the PDF

    QTest::newRow("lines") << QStringList{"F:courier new:12", "L:First", "L:Second"} << 1 << false
                           << QStringList{"1:0:First", "1:0:Second"} << "LiberationMono";
    QTest::newRow("landscape") << QStringList{"O:landscape", "L:Wide"} << 1 << true << QStringList{"1:0:Wide"}
                               << "LiberationSans";
    QTest::newRow("new page") << QStringList{"L:Alpha", "N", "L:Beta"} << 2 << false
                              << QStringList{"1:0:Alpha", "2:0:Beta"} << "LiberationSans";
    QTest::newRow("landscape second page") << QStringList{"O:landscape", "L:One", "N", "L:Two"} << 2 << true
                                           << QStringList{"2:0:Two"} << "LiberationSans";
    // Courier at 12 points is a tenth of an inch a column: a zone is 1.4 inch.
    QTest::newRow("x position and zones")
        << QStringList{"F:Courier New:12", "X:2", "P:Left", "Z", "L:Zoned", "L:Back"} << 1 << false
        << QStringList{"1:2:Left", "1:2.8:Zoned", "1:0:Back"} << "LiberationMono";
    QTest::newRow("bold italic") << QStringList{"F:Arial:18:b:i", "X:0.5", "L:Title"} << 1 << false
                                 << QStringList{"1:0.5:Title"} << "LiberationSans-BoldItalic";
    QStringList many{"F:courier new:12"};
    for (int i = 1; i <= 150; ++i) many << QString("L:Line%1").arg(i);
    QTest::newRow("long report runs on") << many << 0 << false << QStringList{"1:0:Line1", "0:0:Line150"}
                                         << "LiberationMono";
}

void TestPrinter::job_to_pdf() {
    QFETCH(QStringList, steps);
    QFETCH(int, pages);
    QFETCH(bool, landscape);
    QFETCH(QStringList, words);
    QFETCH(QString, font);
    QTemporaryDir dir;
    test::PdfPrinter printer(dir.path());

    carry_out(printer, steps);
    QVERIFY(printer.end_job());
    const QString pdf = qs(printer.last_pdf());
    QVERIFY(QFile::exists(pdf));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{QFileInfo(pdf).fileName()});

    const int count = page_count(pdf);
    if (pages > 0)
        QCOMPARE(count, pages);
    else
        QVERIFY(count > 1);
    QCOMPARE(is_landscape(pdf), landscape);
    const QList<PdfWord> found = words_of(pdf);
    for (const QString& w : words) {
        const int page = w.section(':', 0, 0).toInt();
        const double x = w.section(':', 1, 1).toDouble();
        const QString text = w.section(':', 2);
        auto it = std::find_if(found.begin(), found.end(), [&](const PdfWord& f) { return f.text == text; });
        QVERIFY2(it != found.end(), qPrintable(text));
        QCOMPARE(it->page, page > 0 ? page : count);
        QVERIFY2(std::abs(it->x_inches - (margin_inches + x)) < 0.03, qPrintable(QString::number(it->x_inches)));
    }
    QVERIFY2(run("pdffonts", {pdf}).contains(font), qPrintable(run("pdffonts", {pdf})));
}

void TestPrinter::chart_into_rectangle_data() {
    QTest::addColumn<bool>("landscape");
    QTest::addColumn<QRectF>("box");  // inches
    QTest::newRow("log graph, portrait") << false << QRectF(1, 3, 6, 4);
    QTest::newRow("trumpet graph, landscape") << true << QRectF(1, 3, 9, 4);
    QTest::newRow("small box") << false << QRectF(2, 1, 2, 1.5);
}

void TestPrinter::chart_into_rectangle() {
    QFETCH(bool, landscape);
    QFETCH(QRectF, box);
    QTemporaryDir dir;
    test::PdfPrinter printer(dir.path());
    Chart chart;
    fill_chart(chart);

    printer.set_orientation(landscape ? PageOrientation::landscape : PageOrientation::portrait);
    QVERIFY(printer.paint(box, [&](QPainter& p, const QRectF& r) { chart.render(p, r); }));
    QVERIFY(printer.end_job());

    const int dpi = 50;
    const QImage page = page_image(qs(printer.last_pdf()), dpi, dir.filePath("page"));
    QVERIFY(!page.isNull());
    // The marks on the page: where, and how many.
    QRect marks;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x)
            if (qGray(page.pixel(x, y)) < 200) marks |= QRect(x, y, 1, 1);
    const QRectF expected((margin_inches + box.x()) * dpi, (margin_inches + box.y()) * dpi, box.width() * dpi,
                          box.height() * dpi);
    QVERIFY2(expected.adjusted(-2, -2, 2, 2).contains(QRectF(marks)), qPrintable(QString("marks %1,%2 %3x%4")
                 .arg(marks.x()).arg(marks.y()).arg(marks.width()).arg(marks.height())));
    // The chart fills its box: axes and labels reach near every side.
    QVERIFY(marks.width() > 0.85 * expected.width());
    QVERIFY(marks.height() > 0.85 * expected.height());
}

void TestPrinter::pdf_file_told_data() {
    QTest::addColumn<QString>("folder");  // relative to a temporary folder
    QTest::addColumn<int>("disk_space");  // bytes a file may take; 0: no limit
    QTest::addColumn<bool>("prints");
    QTest::addColumn<bool>("lines_taken");
    QTest::addColumn<bool>("written");
    QTest::addColumn<int>("style");  // of the box told; 0: none
    QTest::addColumn<QString>("title");
    QTest::newRow("written and told") << "" << 0 << true << true << true << static_cast<int>(box_information) << "PRINTED";
    QTest::newRow("folder missing") << "missing" << 0 << true << false << false << static_cast<int>(box_critical) << "ERROR";
    QTest::newRow("disk full") << "" << 2048 << true << true << false << static_cast<int>(box_critical) << "ERROR";
    QTest::newRow("nothing printed") << "" << 0 << false << true << false << 0 << "";
}

void TestPrinter::pdf_file_told() {
    QFETCH(QString, folder);
    QFETCH(int, disk_space);
    QFETCH(bool, prints);
    QFETCH(bool, lines_taken);
    QFETCH(bool, written);
    QFETCH(int, style);
    QFETCH(QString, title);
    QTemporaryDir dir;
    auto boxes = std::make_unique<ScriptedMessageBoxes>();
    ScriptedMessageBoxes* shown = boxes.get();
    services().boxes = std::move(boxes);
    if (style) shown->expect();
    const QString pdf_folder = folder.isEmpty() ? dir.path() : dir.filePath(folder);
    QtPrinter printer(QtPrinterOptions{.always_pdf = true, .pdf_folder = ss(pdf_folder), .pdf_name = "report.pdf"});
    const std::string path = ss(pdf_folder + "/report.pdf");

    {
        FileSizeLimit limit(static_cast<rlim_t>(disk_space));
        if (prints) QCOMPARE(printer.print_line("Report line") && printer.print_line("Another"), lines_taken);
        QCOMPARE(printer.end_job(), written || !prints);
    }

    QCOMPARE(QFile::exists(qs(path)), written);
    QCOMPARE(printer.last_pdf(), written ? path : std::string());
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), written ? QStringList{"report.pdf"} : QStringList{});
    QCOMPARE(static_cast<int>(shown->shown.size()), style ? 1 : 0);
    if (style) {
        QCOMPARE(shown->shown[0].style, style);
        QCOMPARE(qs(shown->shown[0].title), title);
        QVERIFY2(shown->shown[0].text.find(path) != std::string::npos, shown->shown[0].text.c_str());
    }
    if (!written && prints) QVERIFY(printer.error().find(path) != std::string::npos);
}

QTEST_MAIN(TestPrinter)
#include "tst_printer.moc"
