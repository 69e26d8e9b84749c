#include "common/printer.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "common/box_message.h"
#include "common/message_boxes.h"
#include "common/qt_text.h"
#include "common/shared_state.h"

namespace kyt {

namespace {

constexpr int zone_columns = 14;

QPageLayout::Orientation qt_orientation(PageOrientation o) {
    return o == PageOrientation::landscape ? QPageLayout::Landscape : QPageLayout::Portrait;
}

// The last bytes of a finished PDF file hold its end mark.
bool pdf_is_whole(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly) || f.size() < 64) return false;
    f.seek(f.size() - 64);
    return f.read(64).contains("%%EOF");
}

}  // namespace

QtPrinter::QtPrinter() : QtPrinter(QtPrinterOptions{}) {}

QtPrinter::QtPrinter(QtPrinterOptions options) : options_(std::move(options)) {}

QtPrinter::~QtPrinter() {
    // A job left open is ended so that its pages are not lost; quietly, as
    // this may run while the program closes and no box can be shown.
    options_.tell = false;
    if (painter_) end_job();
}

QPrinter& QtPrinter::device() const {
    if (!printer_) {
        const QPrinterInfo info = options_.always_pdf ? QPrinterInfo() : QPrinterInfo::defaultPrinter();
        if (!info.isNull()) {
            printer_ = std::make_unique<QPrinter>(info, QPrinter::HighResolution);
        } else {
            printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
            printer_->setOutputFormat(QPrinter::PdfFormat);
            // Margins as a printer's own: a quarter inch all round.
            printer_->setPageMargins(QMarginsF(0.25, 0.25, 0.25, 0.25), QPageLayout::Inch);
        }
        printer_->setPageOrientation(qt_orientation(orientation_));
    }
    return *printer_;
}

void QtPrinter::set_orientation(PageOrientation orientation) {
    orientation_ = orientation;
    // Before the job has begun the page takes it at once; during a job, at
    // the next page.
    if (printer_ && !painter_) printer_->setPageOrientation(qt_orientation(orientation));
}

void QtPrinter::set_font_name(const std::string& name) { font_name_ = name; }
void QtPrinter::set_font_size(double points) {
    if (std::isfinite(points) && points > 0) font_points_ = std::min(points, 1000.0);
}
void QtPrinter::set_bold(bool on) { bold_ = on; }
void QtPrinter::set_italic(bool on) { italic_ = on; }

QFont QtPrinter::font() const {
    // "Arial" and "Courier New" are answered by fontconfig with their metric
    // twins, Liberation Sans and Liberation Mono.
    QFont f(qs(font_name_));
    f.setPointSizeF(font_points_);
    f.setBold(bold_);
    f.setItalic(italic_);
    return f;
}

double QtPrinter::line_height() const {
    QPrinter& p = device();
    return QFontMetricsF(font(), &p).lineSpacing() / std::max(1, p.logicalDpiY());
}

double QtPrinter::page_width() const {
    return device().pageLayout().paintRect(QPageLayout::Inch).width();
}

double QtPrinter::page_height() const {
    return device().pageLayout().paintRect(QPageLayout::Inch).height();
}

std::string QtPrinter::next_pdf_path() const {
    const QString folder = qs_file(options_.pdf_folder.empty() ? shared().dirs.save_dir : options_.pdf_folder);
    const QDir dir(folder.isEmpty() ? QDir::homePath() : folder);
    if (!options_.pdf_name.empty()) return ss_file(dir.filePath(qs_file(options_.pdf_name)));
    const QString stem = "kyt-print-" + QDateTime::currentDateTime().toString("yyyyMMdd-hhmmss");
    QString path = dir.filePath(stem + ".pdf");
    for (int n = 2; QFileInfo::exists(path); ++n) path = dir.filePath(stem + "-" + QString::number(n) + ".pdf");
    return ss_file(path);
}

bool QtPrinter::fail(const std::string& why) {
    if (failed_) return false;
    failed_ = true;
    error_ = why;
    if (to_pdf_ && options_.tell) msg_box(why, box_critical, "ERROR");
    return false;
}

bool QtPrinter::begin_job() {
    if (failed_) return false;
    if (painter_) return true;
    QPrinter& p = device();
    to_pdf_ = p.outputFormat() == QPrinter::PdfFormat;
    if (to_pdf_) {
        pdf_path_ = next_pdf_path();
        pdf_part_path_ = pdf_path_ + ".part";
        p.setOutputFileName(qs_file(pdf_part_path_));
    }
    p.setPageOrientation(qt_orientation(orientation_));
    p.setDocName("Kyt Console");
    error_.clear();
    painter_ = std::make_unique<QPainter>();
    if (!painter_->begin(&p)) {
        painter_.reset();
        if (to_pdf_) return fail("The PDF file \"" + pdf_path_ + "\" could not be written: its folder cannot be written to.");
        return fail("The printer \"" + ss(p.printerName()) + "\" could not start printing.");
    }
    x_ = std::max(0.0, x_);
    y_ = std::max(0.0, y_);
    return true;
}

bool QtPrinter::fits_line() {
    // A line that would run off the page starts the next one.
    if (y_ > 0 && y_ + line_height() > page_height()) return new_page();
    return true;
}

bool QtPrinter::print(const std::string& text) {
    if (!begin_job() || !fits_line()) return false;
    QPrinter& p = device();
    const double dpi_x = std::max(1, p.logicalDpiX()), dpi_y = std::max(1, p.logicalDpiY());
    painter_->setFont(font());
    painter_->setPen(Qt::black);
    const QFontMetricsF metrics(painter_->font(), &p);
    std::string run;
    auto flush = [&] {
        if (run.empty()) return;
        const QString s = qs(run);
        painter_->drawText(QPointF(x_ * dpi_x, y_ * dpi_y + metrics.ascent()), s);
        x_ += metrics.horizontalAdvance(s) / dpi_x;
        run.clear();
    };
    for (char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (u == '\t') {
            flush();
            next_zone();
        } else if (u >= 32 && u != 127) {
            run.push_back(c);
        }
    }
    flush();
    return !failed_;
}

void QtPrinter::next_zone() {
    QPrinter& p = device();
    const double zone = zone_columns * QFontMetricsF(font(), &p).averageCharWidth() / std::max(1, p.logicalDpiX());
    if (zone > 0) x_ = (std::floor(x_ / zone + 1e-9) + 1) * zone;
}

bool QtPrinter::print_line(const std::string& text) {
    if (!print(text)) return false;
    y_ += line_height();
    x_ = 0;
    return true;
}

bool QtPrinter::new_page() {
    if (!begin_job()) return false;
    QPrinter& p = device();
    p.setPageOrientation(qt_orientation(orientation_));
    if (!p.newPage()) return fail("The printer could not begin a new page.");
    x_ = 0;
    y_ = 0;
    return true;
}

bool QtPrinter::paint(const QRectF& inches, const PaintFn& fn) {
    if (!begin_job()) return false;
    QPrinter& p = device();
    const double dpi_x = std::max(1, p.logicalDpiX()), dpi_y = std::max(1, p.logicalDpiY());
    const QRectF page(0, 0, page_width() * dpi_x, page_height() * dpi_y);
    const QRectF rect =
        QRectF(inches.x() * dpi_x, inches.y() * dpi_y, inches.width() * dpi_x, inches.height() * dpi_y).intersected(page);
    if (rect.isEmpty() || !fn) return true;
    painter_->save();
    fn(*painter_, rect);
    painter_->restore();
    return !failed_;
}

void QtPrinter::reset_job() {
    painter_.reset();
    printer_.reset();
    failed_ = false;
    to_pdf_ = false;
    x_ = 0;
    y_ = 0;
}

bool QtPrinter::end_job() {
    last_pdf_.clear();
    if (!painter_) {
        // Nothing printed, or the job failed before its first page.
        const bool ok = !failed_;
        if (to_pdf_) QFile::remove(qs_file(pdf_part_path_));
        reset_job();
        return ok;
    }
    const bool ended = painter_->end() && !failed_;
    bool ok = ended;
    if (to_pdf_) {
        const QString part = qs_file(pdf_part_path_), whole = qs_file(pdf_path_);
        if (!ended || !pdf_is_whole(part)) {
            fail("The PDF file \"" + pdf_path_ + "\" could not be written: the disk may be full.");
            ok = false;
        } else if (std::rename(QFile::encodeName(part).constData(), QFile::encodeName(whole).constData()) != 0) {
            fail("The PDF file \"" + pdf_path_ + "\" could not be written: it could not take its name.");
            ok = false;
        }
        if (!ok) {
            QFile::remove(part);
        } else {
            last_pdf_ = pdf_path_;
            if (options_.tell) msg_box("The printout was saved as a PDF file:\r\n" + pdf_path_, box_information, "PRINTED");
        }
    } else if (!ended) {
        fail("The printer could not finish the job.");
    }
    const std::string why = error_;
    reset_job();
    error_ = ok ? std::string() : why;
    return ok;
}

}  // namespace kyt
