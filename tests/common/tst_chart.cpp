// The chart and the printer, read back by readers that are not the writers:
// image files by ImageMagick and libuemf's record parser, printed PDF files
// by poppler's tools (text, fonts, positions, pages and orientation, a chart
// drawn into a rectangle of a page). And the repaint throttle, the scrolling
// mode of the live tests, what a draw shows, what the user is told of a PDF.

#include <QFile>
#include <QProcess>
#include <QSignalSpy>
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

// A chart as the stored-log graph shows one: three sets, the third on the
// right axis, titles and legend.
void fill_sample(Chart& c) {
    c.set_title("Data Log Graph");
    c.set_set_count(3);
    c.set_legend_text(1, "Flow");
    c.set_legend_text(2, "Avg Flow");
    c.set_legend_text(3, "Volume");
    c.set_axis_of(3, ChartAxis::right);
    c.set_axis_title(ChartAxis::left, "Flow (ml/hr)");
    c.set_axis_title(ChartAxis::x, "Time (minutes)");
    c.set_axis_title(ChartAxis::right, "Volume (ml)");
    c.set_range(ChartAxis::x, 0, 60);
    c.set_tick_step(ChartAxis::x, 10, 5);
    c.set_range(ChartAxis::left, 80, 120);
    c.set_tick_divisions(ChartAxis::left, 4);
    for (int i = 0; i <= 120; ++i) {
        const double t = i * 0.5;
        c.add_point(1, t, 100 + 12 * std::sin(t / 3));
        c.add_point(2, t, 100 + 2 * std::sin(t / 20));
        c.add_point(3, t, t * 1.66);
    }
    c.draw_now();
}

// An image (BMP, JPEG, GIF) decoded by ImageMagick, as 8-bit RGB.
QImage decode_with_magick(const QString& path) {
    QProcess p;
    p.start("convert", {path, "-depth", "8", "ppm:-"});
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return {};
    return QImage::fromData(p.readAllStandardOutput(), "PPM");
}

// The metafile read by hand: the size and resolution of its placeable
// header, and the bitmap of its STRETCHDIB record, which Qt reads as the BMP
// file it becomes with a file header in front.
struct WmfContent {
    QSize size;
    int units_per_inch = 0;
    QImage picture;
};

WmfContent decode_wmf(const QString& path) {
    WmfContent out;
    QFile f(path);
    const QByteArray b = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    const auto u16 = [&](qsizetype at) { return qFromLittleEndian<quint16>(b.constData() + at); };
    const auto u32 = [&](qsizetype at) { return qFromLittleEndian<quint32>(b.constData() + at); };
    if (b.size() < 40 || u32(0) != 0x9AC6CDD7) return out;
    out.size = QSize(qint16(u16(10)) - qint16(u16(6)), qint16(u16(12)) - qint16(u16(8)));
    out.units_per_inch = u16(14);
    // The records follow the placeable header (22 bytes) and the header, whose length is in its second word.
    for (qsizetype at = 22 + 2 * u16(24), size = 0; at + 6 <= b.size(); at += size) {
        size = 2 * qsizetype(u32(at));
        if (size < 6 || at + size > b.size()) break;
        if (u16(at + 4) != 0x0F43) continue;  // STRETCHDIB: 22 bytes of parameters, then the DIB
        QByteArray bmp = "BM" + QByteArray(12, '\0') + b.mid(at + 28, size - 28);
        qToLittleEndian<quint32>(quint32(bmp.size()), bmp.data() + 2);
        qToLittleEndian<quint32>(14 + u32(at + 28), bmp.data() + 10);  // no colour table at 24 bits a pixel
        out.picture.loadFromData(bmp, "BMP");
    }
    return out;
}

// Mean difference per channel between two images of one size.
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

// Carries out a job written as steps: "L:text" a line, "P:text" text on the
// line, "Z" next print zone, "X:inches", "F:name:points[:b][:i]" a font.
void carry_out(Printer& printer, const QStringList& steps) {
    for (const QString& step : steps) {
        const QString arg = step.section(':', 1);
        switch (step.at(0).toLatin1()) {
            case 'L': QVERIFY(printer.print_line(ss(arg))); break;
            case 'P': QVERIFY(printer.print(ss(arg))); break;
            case 'Z': printer.next_zone(); break;
            case 'X': printer.set_x(arg.toDouble()); break;
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

}  // namespace

class TestChart : public QObject {
    Q_OBJECT

private slots:
    void image_file_read_back_data() {
        QTest::addColumn<ImageFormat>("format");
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("tolerance");  // mean difference per channel, 0..255
        QTest::newRow("bitmap") << ImageFormat::bmp << "chart.bmp" << 0.0;
        QTest::newRow("jpeg") << ImageFormat::jpg << "chart.jpg" << 4.0;
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

        QImage read = format == ImageFormat::wmf ? QImage() : decode_with_magick(path);
        if (format == ImageFormat::wmf) {
            const WmfContent wmf = decode_wmf(path);
            QCOMPARE(wmf.size, size);
            QCOMPARE(wmf.units_per_inch, 96);
            read = wmf.picture;
        }
        QCOMPARE(read.size(), size);
        // The same picture as the chart draws: colours, row order and palette.
        const QImage drawn = chart.to_image(size);
        QVERIFY2(mean_difference(read, drawn) <= tolerance, qPrintable(QString::number(mean_difference(read, drawn))));
        QImage blank(size, QImage::Format_RGB32);
        blank.fill(Qt::white);
        QVERIFY(mean_difference(read, blank) > 1);  // the chart is there, not a blank page
    }

    void image_file_not_written_data() {
        QTest::addColumn<QString>("target");  // relative to a temporary folder
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
        for (const char* name : {"plain.txt", "old.wmf", "old.jpg", "old.bmp"}) {
            QFile f(dir.filePath(name));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("old content");
        }
        const QStringList before = files_in(dir.path());
        Chart chart;
        fill_sample(chart);
        const std::string path = ss(dir.filePath(target));

        std::string error;
        {
            FileSizeLimit limit(static_cast<rlim_t>(disk_space));
            error = chart.write_image(path, *image_format_of(ss(target.endsWith("sub") ? "x.bmp" : target)), size);
        }
        QVERIFY(!error.empty());
        QVERIFY2(error.find(path) != std::string::npos, error.c_str());
        QCOMPARE(files_in(dir.path()), before);  // no new file, no temporary left
        for (const char* name : {"plain.txt", "old.wmf", "old.jpg", "old.bmp"}) {
            QFile f(dir.filePath(name));
            QVERIFY(f.open(QIODevice::ReadOnly));
            QCOMPARE(f.readAll(), QByteArray("old content"));
        }
    }

    void repaint_requests_coalesce_data() {
        QTest::addColumn<int>("points");
        QTest::addColumn<bool>("with_settings");
        QTest::newRow("a burst of points") << 5000 << false;
        QTest::newRow("points, ranges and legends") << 500 << true;
    }

    void repaint_requests_coalesce() {
        QFETCH(int, points);
        QFETCH(bool, with_settings);
        Chart chart;
        chart.set_set_count(2);
        chart.draw_now();
        QTest::qWait(2 * Chart::min_draw_interval_ms);
        QSignalSpy draws(&chart, &Chart::drawn);

        for (int i = 0; i < points; ++i) {
            QVERIFY(chart.add_point(1 + i % 2, i, i % 7));
            if (with_settings) {
                chart.set_range(ChartAxis::x, 0, i + 1);
                chart.set_legend_text(1, "Flow " + std::to_string(i));
            }
        }
        QCOMPARE(draws.count(), 0);  // nothing drawn inside the burst
        QTRY_COMPARE(draws.count(), 1);
        QTest::qWait(4 * Chart::min_draw_interval_ms);
        QCOMPARE(draws.count(), 1);  // one draw served the whole burst

        // A full draw happens at once, and takes the place of a pending one.
        chart.add_point(1, 0, 0);
        chart.draw_now();
        QCOMPARE(draws.count(), 2);
        QTest::qWait(4 * Chart::min_draw_interval_ms);
        QCOMPARE(draws.count(), 2);
    }

    void scrolling_keeps_last_points_data() {
        QTest::addColumn<int>("visible");
        QTest::addColumn<int>("added");
        QTest::newRow("fewer than in view") << 25 << 10;
        QTest::newRow("exactly in view") << 25 << 25;
        QTest::newRow("one more") << 25 << 26;
        QTest::newRow("small view") << 3 << 7;
    }

    void scrolling_keeps_last_points() {
        QFETCH(int, visible);
        QFETCH(int, added);
        Chart chart;
        chart.set_set_count(2);
        chart.set_scrolling(visible);
        for (int i = 1; i <= added; ++i) {
            QVERIFY(chart.scroll_in(1, i));
            QVERIFY(chart.scroll_in(2, -i));
        }
        std::vector<double> last, last_negative;
        for (int i = std::max(1, added - visible + 1); i <= added; ++i) {
            last.push_back(i);
            last_negative.push_back(-i);
        }
        QCOMPARE(chart.values_in_view(1), last);
        QCOMPARE(chart.values_in_view(2), last_negative);
        // The newest stands at the right end of the x axis.
        QCOMPARE(chart.point_x(1, chart.point_count(1)), std::optional<double>(visible));
        QCOMPARE(chart.range(ChartAxis::x).max, static_cast<double>(visible));
    }

    void what_is_drawn_data() {
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("last");
        QTest::addColumn<double>("x_min");
        QTest::addColumn<double>("x_max");
        QTest::addColumn<bool>("hidden");
        QTest::addColumn<QList<double>>("expected");  // set 1 has y = 10 * x at x = 0..9
        QTest::newRow("all") << 1 << 0 << 0.0 << 9.0 << false << QList<double>{0, 10, 20, 30, 40, 50, 60, 70, 80, 90};
        QTest::newRow("stretch of points") << 3 << 5 << 0.0 << 9.0 << false << QList<double>{20, 30, 40};
        QTest::newRow("last beyond the end") << 9 << 50 << 0.0 << 9.0 << false << QList<double>{80, 90};
        QTest::newRow("x range clips") << 1 << 0 << 2.5 << 4.0 << false << QList<double>{30, 40};
        QTest::newRow("hidden style") << 1 << 0 << 0.0 << 9.0 << true << QList<double>{};
    }

    void what_is_drawn() {
        QFETCH(int, first);
        QFETCH(int, last);
        QFETCH(double, x_min);
        QFETCH(double, x_max);
        QFETCH(bool, hidden);
        QFETCH(QList<double>, expected);
        Chart chart;
        chart.set_placeholder("Open a file for display...", 500);
        chart.set_set_count(1);
        chart.draw_now();
        QVERIFY(chart.placeholder_shown());
        std::vector<double> x, y;
        for (int i = 0; i < 10; ++i) {
            x.push_back(i);
            y.push_back(10.0 * i);
        }
        QVERIFY(chart.set_points(1, x, y));
        // Values the chart refuses leave the set as it was.
        QVERIFY(!chart.add_point(1, 10, std::numeric_limits<double>::quiet_NaN()));
        QVERIFY(!chart.add_point(1, std::numeric_limits<double>::infinity(), 1));
        QVERIFY(!chart.add_point(2, 10, 1));
        QVERIFY(!chart.set_points(1, {1, 2}, {1}));
        chart.set_drawn_points(first, last);
        chart.set_range(ChartAxis::x, x_min, x_max);
        chart.set_curve_style(1, hidden ? CurveStyle::hidden : CurveStyle::line);
        chart.draw_now();

        QCOMPARE(chart.values_in_view(1), std::vector<double>(expected.begin(), expected.end()));
        QCOMPARE(chart.point_count(1), 10);  // hiding or cutting keeps the data
        QCOMPARE(chart.point_x(1, 4), std::optional<double>(3));
        QVERIFY(!chart.placeholder_shown());
        chart.clear();
        chart.draw_now();
        QVERIFY(chart.placeholder_shown());
    }

    void job_to_pdf_data() {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<int>("pages");  // 0: more than one, the first of them full
        QTest::addColumn<QStringList>("words");  // "page:x inches:word"; page 0 the last, x -1 anywhere
        QTest::addColumn<QString>("font");       // as embedded in the PDF
        // Courier at 12 points is a tenth of an inch a column: a zone is 1.4 inch.
        QTest::newRow("x position and zones")
            << QStringList{"F:Courier New:12", "X:2", "P:Left", "Z", "L:Zoned", "L:Back"} << 1
            << QStringList{"1:2:Left", "1:2.8:Zoned", "1:0:Back"} << "LiberationMono";
        QTest::newRow("bold italic") << QStringList{"F:Arial:18:b:i", "X:0.5", "L:Title"} << 1
                                     << QStringList{"1:0.5:Title"} << "LiberationSans-BoldItalic";
        QStringList many{"F:courier new:12"};
        for (int i = 1; i <= 150; ++i) many << QString("L:Line%1").arg(i);
        QTest::newRow("long report runs on") << many << 0 << QStringList{"1:0:Line1", "0:0:Line150"}
                                             << "LiberationMono";
    }

    void job_to_pdf() {
        QFETCH(QStringList, steps);
        QFETCH(int, pages);
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
        QVERIFY(!is_landscape(pdf));
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
        if (pages == 0) {
            // The first page is full: the next line would not have fitted on it.
            const auto top = [&](const QString& t) {
                return std::find_if(found.begin(), found.end(), [&](const PdfWord& f) { return f.text == t; })->y_inches;
            };
            const double line = top("Line2") - top("Line1");
            const QString size = run("pdfinfo", {pdf});
            const double room =
                QRegularExpression(R"(Page size:\s+[0-9.]+ x ([0-9.]+))").match(size).captured(1).toDouble() / 72 -
                2 * margin_inches;
            const auto on_first =
                std::count_if(found.begin(), found.end(), [](const PdfWord& f) { return f.page == 1; });
            QVERIFY2(on_first * line <= room && (on_first + 1) * line > room,
                     qPrintable(QString("%1 lines of %2 in on %3 in").arg(on_first).arg(line).arg(room)));
        }
        QVERIFY2(run("pdffonts", {pdf}).contains(font), qPrintable(run("pdffonts", {pdf})));
    }

    // A chart drawn into a small box of a page (the pages of both graphs
    // hold theirs in a large one) stays inside it and fills it.
    void chart_into_rectangle() {
        const QRectF box(2, 1, 2, 1.5);  // inches
        QTemporaryDir dir;
        test::PdfPrinter printer(dir.path());
        Chart chart;
        fill_sample(chart);
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

    void pdf_file_told_data() {
        QTest::addColumn<QString>("folder");  // relative to a temporary folder
        QTest::addColumn<int>("disk_space");  // bytes a file may take; 0: no limit
        QTest::addColumn<bool>("prints");
        QTest::addColumn<bool>("lines_taken");
        QTest::addColumn<bool>("written");
        QTest::addColumn<QString>("told");  // the title of the box told: PRINTED (information) or ERROR (critical)
        QTest::newRow("written and told") << "" << 0 << true << true << true << "PRINTED";
        QTest::newRow("folder missing") << "missing" << 0 << true << false << false << "ERROR";
        QTest::newRow("disk full") << "" << 2048 << true << true << false << "ERROR";
        QTest::newRow("nothing printed") << "" << 0 << false << true << false << "";
    }

    void pdf_file_told() {
        QFETCH(QString, folder);
        QFETCH(int, disk_space);
        QFETCH(bool, prints);
        QFETCH(bool, lines_taken);
        QFETCH(bool, written);
        QFETCH(QString, told);
        QTemporaryDir dir;
        auto boxes = std::make_unique<ScriptedMessageBoxes>();
        ScriptedMessageBoxes* shown = boxes.get();
        services().boxes = std::move(boxes);
        if (!told.isEmpty()) shown->expect();
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
        QCOMPARE(static_cast<int>(shown->shown.size()), told.isEmpty() ? 0 : 1);
        if (!told.isEmpty()) {
            QCOMPARE(qs(shown->shown[0].title), told);
            QCOMPARE(shown->shown[0].style, told == "PRINTED" ? box_information : box_critical);
            QVERIFY2(shown->shown[0].text.find(path) != std::string::npos, shown->shown[0].text.c_str());
        }
        if (!written && prints) QVERIFY(printer.error().find(path) != std::string::npos);
    }
};

QTEST_MAIN(TestChart)
#include "tst_chart.moc"
