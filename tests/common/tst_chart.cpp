// The chart, printer, message boxes and file dialogs; files read back by other readers (ImageMagick, poppler).

#include <QtTest>
#include <QtWidgets>
#include <cmath>

#include "app/dialogs/file_dialogs.h"
#include "common/chart.h"
#include "common/image_files.h"
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
    c.set_set_count(3);
    c.set_axis_of(3, ChartAxis::right);
    c.set_axis_title(ChartAxis::left, "Flow (ml/hr)");
    c.set_range(ChartAxis::x, 0, 60);
    c.set_range(ChartAxis::left, 80, 120);
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

// Steps: "L:text" a line, "P:text" on the line, "Z" next zone, "X:inches", "F:name:points[:b][:i]" a font.
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

// Runs `inspect` on the modal dialog once it is up.
template <class D, class F>
void when_shown(F inspect) {
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, inspect] {
        if (auto* d = qobject_cast<D*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            inspect(d);
        }
    });
    timer->start(10);
}

}  // namespace

class TestChart : public QObject {
    Q_OBJECT

private slots:
    // A full disk keeps the old file and names the path.
    void image_file_data() {
        QTest::addColumn<ImageFormat>("format");
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("tolerance");  // mean difference per channel
        QTest::addColumn<int>("disk_space");    // bytes a file may take; 0: no limit
        QTest::newRow("bitmap") << ImageFormat::bmp << "chart.bmp" << 0.0 << 0;
        QTest::newRow("gif") << ImageFormat::gif << "chart.gif" << 2.0 << 0;
        QTest::newRow("disk full keeps the old bitmap") << ImageFormat::bmp << "chart.bmp" << 0.0 << 4096;
    }
    void image_file() {
        QFETCH(ImageFormat, format);
        QFETCH(QString, name);
        QFETCH(double, tolerance);
        QFETCH(int, disk_space);
        QTemporaryDir dir;
        const QString path = dir.filePath(name);
        QFile old(path);
        QVERIFY(!disk_space || (old.open(QIODevice::WriteOnly) && old.write("old content") == 11));
        old.close();
        const QSize size(640, 400);
        Chart chart;
        fill_sample(chart);
        std::string error;
        {
            FileSizeLimit limit(static_cast<rlim_t>(disk_space));
            error = chart.write_image(ss(path), format, size);
        }
        QCOMPARE(files_in(dir.path()), QStringList{name});  // no temporary left
        if (disk_space) {
            QVERIFY2(error.find(ss(path)) != std::string::npos, error.c_str());
            QVERIFY(old.open(QIODevice::ReadOnly));
            QCOMPARE(old.readAll(), QByteArray("old content"));
            return;
        }
        QCOMPARE(error, std::string());
        const QImage read = decode_with_magick(path);
        QCOMPARE(read.size(), size);
        const double diff = mean_difference(read, chart.to_image(size));
        QVERIFY2(diff <= tolerance, qPrintable(QString::number(diff)));
        QImage blank(size, QImage::Format_RGB32);
        blank.fill(Qt::white);
        QVERIFY(mean_difference(read, blank) > 1);
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

    // With no printer a job becomes a PDF file, told by its path; a file that cannot be written is told as an error.
    void pdf_file_told_data() {
        QTest::addColumn<int>("disk_space");  // bytes a file may take; 0: no limit
        QTest::newRow("written and told") << 0;
        QTest::newRow("disk full") << 2048;
    }
    void pdf_file_told() {
        QFETCH(int, disk_space);
        QTemporaryDir dir;
        auto* boxes = new ScriptedMessageBoxes;
        services().boxes.reset(boxes);
        boxes->expect();
        QtPrinter printer(QtPrinterOptions{.always_pdf = true, .pdf_folder = ss(dir.path()), .pdf_name = "report.pdf"});
        const std::string path = ss(dir.filePath("report.pdf"));
        const bool written = disk_space == 0;
        {
            FileSizeLimit limit(static_cast<rlim_t>(disk_space));
            QVERIFY(printer.print_line("Report line") && printer.print_line("Another"));
            QCOMPARE(printer.end_job(), written);
        }
        QCOMPARE(printer.last_pdf(), written ? path : std::string());
        QCOMPARE(files_in(dir.path()), written ? QStringList{"report.pdf"} : QStringList{});
        QCOMPARE(static_cast<int>(boxes->shown.size()), 1);
        QCOMPARE(qs(boxes->shown[0].title), written ? "PRINTED" : "ERROR");
        QCOMPARE(boxes->shown[0].style, written ? box_information : box_critical);
        QVERIFY2(boxes->shown[0].text.find(path) != std::string::npos, boxes->shown[0].text.c_str());
        if (!written) QVERIFY(printer.error().find(path) != std::string::npos);
    }

    // Icon, buttons (the default first) and answer of a style; CR, CR LF and LF each one line break on screen.
    void message_box_styles_data() {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("icon");
        QTest::addColumn<QString>("buttons");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("tail");  // bytes after the text: a file name's, or a one-byte character's
        QTest::addColumn<QString>("tail_shown");
        QTest::newRow("16 critical, a UTF-8 file name") << 16 << int(QMessageBox::Critical) << "OK" << int(answer_ok)
                                     << "Line one\r\rLine two" << QByteArray("Pr\xC3\xBC" "fung.log") << "Prüfung.log";
        QTest::newRow("48 exclamation, a one-byte character") << 48 << int(QMessageBox::Warning) << "OK"
                                        << int(answer_ok) << "Line one\r\n\r\nLine two" << QByteArray(" 5 \xB5l") << " 5 µl";
        QTest::newRow("292 question, No default") << 292 << int(QMessageBox::Question) << "No Yes" << int(answer_no)
                                                  << "Line one\n\nLine two" << QByteArray() << "";
    }
    void message_box_styles() {
        QFETCH(int, style);
        QFETCH(int, icon);
        QFETCH(QString, buttons);
        QFETCH(int, answer);
        QFETCH(QString, text);
        QFETCH(QByteArray, tail);
        QFETCH(QString, tail_shown);
        QString seen;
        when_shown<QMessageBox>([&](QMessageBox* box) {
            QStringList others;
            for (QAbstractButton* b : box->buttons())
                if (b != box->defaultButton()) others << b->text().remove('&');
            others.prepend(box->defaultButton()->text().remove('&'));
            seen = QString("%1|%2|%3|%4").arg(box->icon()).arg(others.join(' '), box->windowTitle(), box->text());
            box->defaultButton()->click();
        });
        QCOMPARE(QtMessageBoxes().show(text.toStdString() + tail.toStdString(), style, "TITLE"), answer);
        QCOMPARE(seen, QString("%1|%2|TITLE|Line one\n\nLine two").arg(icon).arg(buttons) + tail_shown);
    }

    // A name typed without an extension takes the chosen filter's; giving up returns nothing.
    void file_dialog_data() {
        QTest::addColumn<bool>("save");
        QTest::addColumn<QString>("typed");  // empty: the dialog is given up
        QTest::addColumn<QString>("chosen");
        QTest::newRow("open an existing file") << false << "pump.log" << "pump.log";
        QTest::newRow("save takes the filter's extension") << true << "newlog" << "newlog.log";
        QTest::newRow("save given up") << true << "" << "";
    }
    void file_dialog() {
        QFETCH(bool, save);
        QFETCH(QString, typed);
        QFETCH(QString, chosen);
        QTemporaryDir dir;
        QVERIFY(QFile(dir.filePath("pump.log")).open(QIODevice::WriteOnly));
        CommonDialog d;
        d.title = "LOG FILE";
        d.filter = "Log Files (*.log)| *.log|All files (*.*) | *.*|Lost";  // an odd piece at the end is left out
        d.default_ext = "LOG";
        d.initial_dir = dir.path().toStdString();
        d.flags = save ? 2062 : 6156;
        QString seen;
        when_shown<QFileDialog>([&](QFileDialog* dlg) {
            seen = QString("%1|%2|%3|mode %4|accept %5|confirm %6")
                       .arg(dlg->windowTitle(), dlg->directory().absolutePath(), dlg->nameFilters().join(';'))
                       .arg(dlg->fileMode())
                       .arg(dlg->acceptMode())
                       .arg(!dlg->testOption(QFileDialog::DontConfirmOverwrite));
            if (typed.isEmpty()) return dlg->reject();
            dlg->findChild<QLineEdit*>("fileNameEdit")->setText(typed);
            QMetaObject::invokeMethod(dlg, "accept");
        });
        QtFileDialogs dialogs;
        const std::string got = save ? dialogs.show_save(d) : dialogs.show_open(d);
        QCOMPARE(QString::fromStdString(got), chosen.isEmpty() ? QString() : dir.filePath(chosen));
        QCOMPARE(seen, QString("LOG FILE|%1|Log Files (*.log);All files (*)|mode %2|accept %3|confirm 1")
                           .arg(QDir(dir.path()).absolutePath())
                           .arg(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile)
                           .arg(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen));
    }
};

QTEST_MAIN(TestChart)
#include "tst_chart.moc"
