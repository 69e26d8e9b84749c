// The chart: image files read back by readers that are not the writers
// (ImageMagick, giflib's decoder, libuemf's record parser), the repaint
// throttle, the scrolling mode of the live tests, and what a draw shows.
//
// With KYT_CHART_LOOK set to a folder, the image test also leaves its files
// there for a person to look at.

#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <cstdlib>
#include <limits>

#include <gif_lib.h>
extern "C" {
#include <uwmf.h>
}

#include "common/chart.h"
#include "common/image_files.h"
#include "common/qt_text.h"
#include "support/full_disk.h"

using namespace kyt;

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

// An image decoded by ImageMagick, as 8-bit RGB.
QImage decode_with_magick(const QString& path) {
    QProcess p;
    p.start("convert", {path, "-depth", "8", "ppm:-"});
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return {};
    return QImage::fromData(p.readAllStandardOutput(), "PPM");
}

QImage decode_gif(const QString& path) {
    int error = 0;
    GifFileType* gif = DGifOpenFileName(QFile::encodeName(path).constData(), &error);
    if (!gif) return {};
    QImage out;
    if (DGifSlurp(gif) == GIF_OK && gif->ImageCount >= 1) {
        const SavedImage& frame = gif->SavedImages[0];
        const ColorMapObject* map = frame.ImageDesc.ColorMap ? frame.ImageDesc.ColorMap : gif->SColorMap;
        out = QImage(gif->SWidth, gif->SHeight, QImage::Format_RGB32);
        for (int y = 0; map && y < frame.ImageDesc.Height; ++y)
            for (int x = 0; x < frame.ImageDesc.Width; ++x) {
                const int index = frame.RasterBits[y * frame.ImageDesc.Width + x];
                const GifColorType c = map->Colors[index < map->ColorCount ? index : 0];
                out.setPixel(x, y, qRgb(c.Red, c.Green, c.Blue));
            }
    }
    DGifCloseFile(gif, &error);
    return out;
}

// The metafile's placeable header and its one bitmap record, read with the
// library's record parsers.
struct WmfContent {
    int header_width = 0, header_height = 0, units_per_inch = 0;
    QImage picture;
};

WmfContent decode_wmf(const QString& path) {
    static_assert(U_WMR_STRETCHDIB == 0x43);
    WmfContent out;
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return out;
    const QByteArray bytes = f.readAll();
    const char* begin = bytes.constData();
    const char* end = begin + bytes.size();
    U_WMRPLACEABLE placeable{};
    U_WMRHEADER header{};
    const int header_size = wmfheader_get(begin, end, &placeable, &header);
    if (header_size <= 0 || placeable.Key != 0x9AC6CDD7) return out;
    out.header_width = placeable.Dst.right - placeable.Dst.left;
    out.header_height = placeable.Dst.bottom - placeable.Dst.top;
    out.units_per_inch = placeable.Inch;
    for (const char* rec = begin + header_size; rec < end;) {
        const std::size_t size = U_WMRRECSAFE_get(rec, end);
        if (size == 0) break;
        if (static_cast<unsigned char>(rec[4]) == U_WMR_STRETCHDIB) {
            U_POINT16 dst, cdst, src, csrc;
            uint16_t usage = 0;
            uint32_t rop = 0;
            const char* dib = nullptr;
            const char* px = nullptr;
            const U_RGBQUAD* ct = nullptr;
            uint32_t nct = 0;
            int32_t w = 0, h = 0, type = 0, invert = 0;
            char* rgba = nullptr;
            if (U_WMRSTRETCHDIB_get(rec, &dst, &cdst, &src, &csrc, &usage, &rop, &dib) &&
                wget_DIB_params(dib, &px, &ct, &nct, &w, &h, &type, &invert) == 0 &&
                // The library keeps the DIB's row order unless told to
                // reverse it; a DIB without the top-down flag is bottom-up.
                DIB_to_RGBA(px, ct, static_cast<int>(nct), &rgba, w, h, static_cast<uint32_t>(type), nct > 0, !invert) == 0) {
                out.picture = QImage(reinterpret_cast<const uchar*>(rgba), w, h, w * 4, QImage::Format_RGBA8888).copy();
                std::free(rgba);
            }
        }
        rec += size;
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

using test::FileSizeLimit;

QStringList files_in(const QString& folder) { return QDir(folder).entryList(QDir::Files | QDir::Hidden); }

}  // namespace

class TestChart : public QObject {
    Q_OBJECT

private slots:
    void image_file_read_back_data();
    void image_file_read_back();
    void image_file_not_written_data();
    void image_file_not_written();
    void format_of_name_data();
    void format_of_name();
    void repaint_requests_coalesce_data();
    void repaint_requests_coalesce();
    void scrolling_keeps_last_points_data();
    void scrolling_keeps_last_points();
    void what_is_drawn_data();
    void what_is_drawn();
};

void TestChart::image_file_read_back_data() {
    QTest::addColumn<ImageFormat>("format");
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("tolerance");  // mean difference per channel, 0..255
    QTest::newRow("bitmap") << ImageFormat::bmp << "chart.bmp" << 0.0;
    QTest::newRow("jpeg") << ImageFormat::jpg << "chart.jpg" << 4.0;
    QTest::newRow("gif") << ImageFormat::gif << "chart.gif" << 2.0;
    QTest::newRow("metafile") << ImageFormat::wmf << "chart.wmf" << 0.0;
}

void TestChart::image_file_read_back() {
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

    QImage read;
    if (format == ImageFormat::gif) {
        read = decode_gif(path);
    } else if (format == ImageFormat::wmf) {
        const WmfContent wmf = decode_wmf(path);
        QCOMPARE(QSize(wmf.header_width, wmf.header_height), size);
        QCOMPARE(wmf.units_per_inch, 96);
        read = wmf.picture;
    } else {
        read = decode_with_magick(path);
    }
    if (const QByteArray look = qgetenv("KYT_CHART_LOOK"); !look.isEmpty()) {
        QDir().mkpath(look);
        QFile::remove(QDir(look).filePath(name));
        QFile::copy(path, QDir(look).filePath(name));
        if (format == ImageFormat::wmf) read.save(QDir(look).filePath("chart-wmf.png"));
    }
    QCOMPARE(read.size(), size);
    // The same picture as the chart draws: colours, row order and palette.
    const QImage drawn = chart.to_image(size);
    QVERIFY2(mean_difference(read, drawn) <= tolerance, qPrintable(QString::number(mean_difference(read, drawn))));
    QImage blank(size, QImage::Format_RGB32);
    blank.fill(Qt::white);
    QVERIFY(mean_difference(read, blank) > 1);  // the chart is there, not a blank page

}

void TestChart::image_file_not_written_data() {
    QTest::addColumn<QString>("target");  // relative to a temporary folder
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("disk_space");  // bytes a file may take; 0: no limit
    QTest::newRow("folder missing") << "missing/chart.bmp" << QSize(200, 100) << 0;
    QTest::newRow("folder is a file") << "plain.txt/chart.gif" << QSize(200, 100) << 0;
    QTest::newRow("name is a folder") << "sub" << QSize(200, 100) << 0;
    QTest::newRow("size zero keeps the old file") << "old.wmf" << QSize(0, 100) << 0;
    QTest::newRow("size too large keeps the old file") << "old.jpg" << QSize(max_image_side + 1, 100) << 0;
    QTest::newRow("disk full keeps the old bitmap") << "old.bmp" << QSize(200, 100) << 4096;
    QTest::newRow("disk full keeps the old metafile") << "old.wmf" << QSize(200, 100) << 4096;
}

void TestChart::image_file_not_written() {
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

void TestChart::format_of_name_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("format");  // -1: none
    QTest::newRow("upper case") << "GRAPH.BMP" << static_cast<int>(ImageFormat::bmp);
    QTest::newRow("jpeg spelled out") << "a.jpeg" << static_cast<int>(ImageFormat::jpg);
    QTest::newRow("last dot counts") << "log.v2.gif" << static_cast<int>(ImageFormat::gif);
    QTest::newRow("metafile") << "/save/trumpet.Wmf" << static_cast<int>(ImageFormat::wmf);
    QTest::newRow("other suffix") << "graph.png" << -1;
    QTest::newRow("dot only in the folder") << "/save.d/graph" << -1;
}

void TestChart::format_of_name() {
    QFETCH(QString, name);
    QFETCH(int, format);
    const auto found = image_format_of(ss(name));
    QCOMPARE(found ? static_cast<int>(*found) : -1, format);
}

void TestChart::repaint_requests_coalesce_data() {
    QTest::addColumn<int>("points");
    QTest::addColumn<bool>("with_settings");
    QTest::newRow("one point") << 1 << false;
    QTest::newRow("a burst of points") << 5000 << false;
    QTest::newRow("points, ranges and legends") << 500 << true;
}

void TestChart::repaint_requests_coalesce() {
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

void TestChart::scrolling_keeps_last_points_data() {
    QTest::addColumn<int>("visible");
    QTest::addColumn<int>("added");
    QTest::newRow("fewer than in view") << 25 << 10;
    QTest::newRow("exactly in view") << 25 << 25;
    QTest::newRow("one more") << 25 << 26;
    QTest::newRow("many more") << 25 << 90;
    QTest::newRow("small view") << 3 << 7;
}

void TestChart::scrolling_keeps_last_points() {
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

void TestChart::what_is_drawn_data() {
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

void TestChart::what_is_drawn() {
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

QTEST_MAIN(TestChart)
#include "tst_chart.moc"
