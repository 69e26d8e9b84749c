// The chart and the printer, read back by readers that are not the writers:
// image files by ImageMagick or by hand (the metafile), PDF files by poppler.

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>
#include <cmath>
#include <limits>

#include "common/chart.h"
#include "common/image_files.h"
#include "common/message_boxes.h"
#include "common/printer.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "support/full_disk.h"
#include "support/pdf_printer.h"
#include "support/pdf_text.h"
#include "support/scripted_boxes.h"

using namespace kyt;
using namespace kyt::test;

Q_DECLARE_METATYPE(kyt::ImageFormat)

namespace {

// A chart as the stored-log graph shows one: three sets, the third on the right axis.
void fill_sample(Chart& c) {
    c.set_title("Data Log Graph");
    c.set_set_count(3);
    for (int s = 1; s <= 3; ++s) c.set_legend_text(s, s == 3 ? "Volume" : "Flow");
    c.set_axis_of(3, ChartAxis::right);
    c.set_axis_title(ChartAxis::left, "Flow (ml/hr)");
    c.set_axis_title(ChartAxis::right, "Volume (ml)");
    c.set_range(ChartAxis::x, 0, 60);
    c.set_tick_step(ChartAxis::x, 10, 5);
    c.set_range(ChartAxis::left, 80, 120);
    c.set_tick_divisions(ChartAxis::left, 4);
    for (int i = 0; i <= 120; ++i) {
        c.add_point(1, i * 0.5, 100 + 12 * std::sin(i / 6.0));
        c.add_point(2, i * 0.5, 100 + 2 * std::sin(i / 40.0));
        c.add_point(3, i * 0.5, i * 0.83);
    }
    c.draw_now();
}

QImage decode_with_magick(const QString& path) {
    QProcess p;
    p.start("convert", {path, "-depth", "8", "ppm:-"});
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return {};
    return QImage::fromData(p.readAllStandardOutput(), "PPM");
}

// The metafile read by hand: the size and resolution of its placeable header,
// and the bitmap of its STRETCHDIB record as a BMP file.
QImage decode_wmf(const QString& path, QSize* size, int* units_per_inch) {
    QFile f(path);
    const QByteArray b = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    const auto u16 = [&](qsizetype at) { return qFromLittleEndian<quint16>(b.constData() + at); };
    const auto u32 = [&](qsizetype at) { return qFromLittleEndian<quint32>(b.constData() + at); };
    QImage out;
    if (b.size() < 40 || u32(0) != 0x9AC6CDD7) return out;
    *size = QSize(qint16(u16(10)) - qint16(u16(6)), qint16(u16(12)) - qint16(u16(8)));
    *units_per_inch = u16(14);
    // Records follow the placeable header (22 bytes) and the header, whose length is in its second word.
    for (qsizetype at = 22 + 2 * u16(24), len = 0; at + 6 <= b.size(); at += len) {
        len = 2 * qsizetype(u32(at));
        if (len < 6 || at + len > b.size()) break;
        if (u16(at + 4) != 0x0F43) continue;  // STRETCHDIB: 22 bytes of parameters, then the DIB
        QByteArray bmp = "BM" + QByteArray(12, '\0') + b.mid(at + 28, len - 28);
        qToLittleEndian<quint32>(quint32(bmp.size()), bmp.data() + 2);
        qToLittleEndian<quint32>(14 + u32(at + 28), bmp.data() + 10);  // no colour table at 24 bits a pixel
        out.loadFromData(bmp, "BMP");
    }
    return out;
}

// Mean difference per channel (0..255) between two images of one size.
double mean_difference(const QImage& a, const QImage& b) {
    const QImage x = a.convertToFormat(QImage::Format_RGB32), y = b.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    for (int r = 0; r < x.height(); ++r)
        for (int c = 0; c < x.width(); ++c) {
            const QRgb p = x.pixel(c, r), q = y.pixel(c, r);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * x.width() * x.height());
}

QStringList files_in(const QString& folder) { return QDir(folder).entryList(QDir::Files | QDir::Hidden); }

constexpr double margin_inches = 0.25;  // the PDF page's printable area starts here

// A job written as steps: "L:text" a line, "P:text" text on the line, "Z"
// next print zone, "X:inches", "F:name:points[:b][:i]" a font.
void carry_out(Printer& printer, const QStringList& steps) {
    for (const QString& step : steps) {
        const QString arg = step.section(':', 1);
        const QStringList f = arg.split(':');
        switch (step.at(0).toLatin1()) {
            case 'L': QVERIFY(printer.print_line(ss(arg))); break;
            case 'P': QVERIFY(printer.print(ss(arg))); break;
            case 'Z': printer.next_zone(); break;
            case 'X': printer.set_x(arg.toDouble()); break;
            case 'F':
                printer.set_font_name(ss(f.value(0)));
                printer.set_font_size(f.value(1).toDouble());
                printer.set_bold(f.contains("b"));
                printer.set_italic(f.contains("i"));
        }
    }
}

}  // namespace

class TestChart : public QObject {
    Q_OBJECT

private slots:
    void image_file_read_back_data() {
        QTest::addColumn<ImageFormat>("format");
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("tolerance");  // mean difference per channel
        QTest::newRow("bitmap") << ImageFormat::bmp << "chart.bmp" << 0.0;
        QTest::newRow("gif") << ImageFormat::gif << "chart.gif" << 2.0;
        QTest::newRow("metafile") << ImageFormat::wmf << "chart.wmf" << 0.0;
    }
    void image_file_read_back() {
        QFETCH(ImageFormat, format);
        QFETCH(QString, name);
        QFETCH(double, tolerance);
        QTemporaryDir dir;
        const QString path = dir.filePath(name);
        const QSize size(640, 400);
        Chart chart;
        fill_sample(chart);
        QCOMPARE(chart.write_image(ss(path), format, size), std::string());
        QCOMPARE(files_in(dir.path()), QStringList{name});
        QSize wmf_size;
        int units_per_inch = 96;
        const QImage read = format == ImageFormat::wmf ? decode_wmf(path, &wmf_size, &units_per_inch)
                                                       : decode_with_magick(path);
        if (format == ImageFormat::wmf) QCOMPARE(wmf_size, size);
        QCOMPARE(units_per_inch, 96);
        QCOMPARE(read.size(), size);
        const double diff = mean_difference(read, chart.to_image(size));
        QVERIFY2(diff <= tolerance, qPrintable(QString::number(diff)));
        QImage blank(size, QImage::Format_RGB32);
        blank.fill(Qt::white);
        QVERIFY(mean_difference(read, blank) > 1);
    }

    void image_file_not_written_data() {
        QTest::addColumn<QString>("target");  // in a temporary folder
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("disk_space");  // bytes a file may take; 0: no limit
        QTest::newRow("name is a folder") << "sub" << QSize(200, 100) << 0;
        QTest::newRow("size zero keeps the old file") << "old.wmf" << QSize(0, 100) << 0;
        QTest::newRow("size too large keeps the old file") << "old.jpg" << QSize(max_image_side + 1, 100) << 0;
        QTest::newRow("disk full keeps the old bitmap") << "old.bmp" << QSize(200, 100) << 4096;
        QTest::newRow("disk full keeps the old metafile") << "old.wmf" << QSize(200, 100) << 4096;
    }
    void image_file_not_written() {
        QFETCH(QString, target);
        QFETCH(QSize, size);
        QFETCH(int, disk_space);
        QTemporaryDir dir;
        QDir(dir.path()).mkdir("sub");
        const QStringList olds{"plain.txt", "old.wmf", "old.jpg", "old.bmp"};
        for (const QString& name : olds) {
            QFile f(dir.filePath(name));
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write("old content") == 11);
        }
        const QStringList before = files_in(dir.path());
        Chart chart;
        fill_sample(chart);
        const std::string path = ss(dir.filePath(target));
        std::string error;
        {
            FileSizeLimit limit(static_cast<rlim_t>(disk_space));
            error = chart.write_image(path, *image_format_of(ss(target == "sub" ? "x.bmp" : target)), size);
        }
        QVERIFY2(!error.empty() && error.find(path) != std::string::npos, error.c_str());
        QCOMPARE(files_in(dir.path()), before);  // no new file, no temporary left
        for (const QString& name : olds) {
            QFile f(dir.filePath(name));
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(f.readAll(), QByteArray("old content"));
        }
    }

    void what_is_drawn_data() {
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("last");
        QTest::addColumn<double>("x_min");
        QTest::addColumn<bool>("hidden");
        QTest::addColumn<QList<double>>("expected");  // y = 10 * x at x = 0..9
        QTest::newRow("stretch of points") << 3 << 5 << 0.0 << false << QList<double>{20, 30, 40};
        QTest::newRow("last beyond the end") << 9 << 50 << 0.0 << false << QList<double>{80, 90};
        QTest::newRow("x range clips") << 1 << 0 << 6.5 << false << QList<double>{70, 80, 90};
        QTest::newRow("hidden style") << 1 << 0 << 0.0 << true << QList<double>{};
    }
    void what_is_drawn() {
        QFETCH(int, first);
        QFETCH(int, last);
        QFETCH(double, x_min);
        QFETCH(bool, hidden);
        QFETCH(QList<double>, expected);
        Chart chart;
        chart.set_placeholder("Open a file for display...", 500);
        chart.set_set_count(1);
        std::vector<double> x, y;
        for (int i = 0; i < 10; ++i) x.push_back(i), y.push_back(10.0 * i);
        QVERIFY(chart.set_points(1, x, y));
        // Values the chart refuses leave the set as it was.
        QVERIFY(!chart.add_point(1, 10, std::numeric_limits<double>::quiet_NaN()));
        QVERIFY(!chart.add_point(1, std::numeric_limits<double>::infinity(), 1));
        QVERIFY(!chart.add_point(2, 10, 1));
        QVERIFY(!chart.set_points(1, {1, 2}, {1}));
        chart.set_drawn_points(first, last);
        chart.set_range(ChartAxis::x, x_min, 9);
        chart.set_curve_style(1, hidden ? CurveStyle::hidden : CurveStyle::line);
        chart.draw_now();
        QCOMPARE(chart.values_in_view(1), std::vector<double>(expected.begin(), expected.end()));
        QCOMPARE(chart.point_count(1), 10);  // hiding or cutting keeps the data
        QVERIFY(!chart.placeholder_shown());
        chart.clear();
        chart.draw_now();
        QVERIFY(chart.placeholder_shown());  // an empty chart shows its placeholder
    }

    void job_to_pdf_data() {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("words");  // "page:x inches:word"; page 0 the last
        QTest::addColumn<QString>("font");       // as embedded in the PDF
        // Courier at 12 points is a tenth of an inch a column: a zone is 1.4 inch.
        QTest::newRow("x position and zones") << QStringList{"F:Courier New:12", "X:2", "P:Left", "Z", "L:Zoned", "L:Back"}
                                              << QStringList{"1:2:Left", "1:2.8:Zoned", "1:0:Back"} << "LiberationMono";
        QTest::newRow("bold italic") << QStringList{"F:Arial:18:b:i", "X:0.5", "L:Title"} << QStringList{"1:0.5:Title"}
                                     << "LiberationSans-BoldItalic";
        QStringList many{"F:courier new:12"};
        for (int i = 1; i <= 150; ++i) many << QString("L:Line%1").arg(i);
        QTest::newRow("long report runs on") << many << QStringList{"1:0:Line1", "0:0:Line150"} << "LiberationMono";
    }
    void job_to_pdf() {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, words);
        QFETCH(QString, font);
        QTemporaryDir dir;
        test::PdfPrinter printer(dir.path());
        carry_out(printer, steps);
        QVERIFY(printer.end_job());
        const QString pdf = qs(printer.last_pdf());
        QCOMPARE(files_in(dir.path()), QStringList{QFileInfo(pdf).fileName()});
        const int pages = page_count(pdf);
        QCOMPARE(pages > 1, steps.size() > 100);
        QVERIFY(!is_landscape(pdf));
        const QList<PdfWord> found = words_of(pdf);
        const auto find = [&](const QString& t) {
            return std::find_if(found.begin(), found.end(), [&](const PdfWord& f) { return f.text == t; });
        };
        for (const QString& w : words) {
            const auto it = find(w.section(':', 2));
            QVERIFY2(it != found.end(), qPrintable(w));
            QCOMPARE(it->page, w.section(':', 0, 0).toInt() > 0 ? w.section(':', 0, 0).toInt() : pages);
            QVERIFY2(std::abs(it->x_inches - margin_inches - w.section(':', 1, 1).toDouble()) < 0.03, qPrintable(w));
        }
        if (pages > 1) {
            // The first page is full: the next line would not have fitted on it.
            const double line = find("Line2")->y_inches - find("Line1")->y_inches;
            const double room =
                pdf_info(pdf, R"(Page size:\s+[0-9.]+ x ([0-9.]+))").captured(1).toDouble() / 72 - 2 * margin_inches;
            const auto on_first = std::count_if(found.begin(), found.end(), [](const PdfWord& f) { return f.page == 1; });
            QVERIFY2(on_first * line <= room && (on_first + 1) * line > room, qPrintable(QString::number(on_first)));
        }
        QVERIFY2(run("pdffonts", {pdf}).contains(font), qPrintable(run("pdffonts", {pdf})));
    }

    void pdf_file_told_data() {
        QTest::addColumn<QString>("folder");  // in a temporary folder
        QTest::addColumn<int>("disk_space");  // bytes a file may take; 0: no limit
        QTest::addColumn<bool>("prints");
        QTest::addColumn<bool>("written");
        QTest::addColumn<QString>("told");  // the title of the box: PRINTED (information) or ERROR (critical)
        QTest::newRow("written and told") << "" << 0 << true << true << "PRINTED";
        QTest::newRow("folder missing") << "missing" << 0 << true << false << "ERROR";
        QTest::newRow("disk full") << "" << 2048 << true << false << "ERROR";
        QTest::newRow("nothing printed") << "" << 0 << false << false << "";
    }
    void pdf_file_told() {
        QFETCH(QString, folder);
        QFETCH(int, disk_space);
        QFETCH(bool, prints);
        QFETCH(bool, written);
        QFETCH(QString, told);
        QTemporaryDir dir;
        auto* boxes = new ScriptedMessageBoxes;
        services().boxes.reset(boxes);
        if (!told.isEmpty()) boxes->expect();
        const QString pdf_folder = folder.isEmpty() ? dir.path() : dir.filePath(folder);
        QtPrinter printer(QtPrinterOptions{.always_pdf = true, .pdf_folder = ss(pdf_folder), .pdf_name = "report.pdf"});
        const std::string path = ss(pdf_folder + "/report.pdf");
        {
            FileSizeLimit limit(static_cast<rlim_t>(disk_space));
            // A line is taken unless the folder is missing.
            if (prints) QCOMPARE(printer.print_line("Report line") && printer.print_line("Another"), folder.isEmpty());
            QCOMPARE(printer.end_job(), written || !prints);
        }
        QCOMPARE(printer.last_pdf(), written ? path : std::string());
        QCOMPARE(files_in(dir.path()), written ? QStringList{"report.pdf"} : QStringList{});
        QCOMPARE(static_cast<int>(boxes->shown.size()), told.isEmpty() ? 0 : 1);
        if (!told.isEmpty()) {
            QCOMPARE(qs(boxes->shown[0].title), told);
            QCOMPARE(boxes->shown[0].style, told == "PRINTED" ? box_information : box_critical);
            QVERIFY2(boxes->shown[0].text.find(path) != std::string::npos, boxes->shown[0].text.c_str());
        }
        if (!written && prints) QVERIFY(printer.error().find(path) != std::string::npos);
    }
};

QTEST_MAIN(TestChart)
#include "tst_chart.moc"
