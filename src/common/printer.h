#pragma once
// The printer, as the report and graph printing use it: a page orientation,
// a text font by name and size with bold and italic, a position in inches
// where the next text starts, text lines, new pages, the extents of the
// printable area, painting into a rectangle of the page (the chart), and the
// end of the job.
//
// A job begins with the first output and ends with end_job(). Positions are
// inches from the top-left corner of the printable area. Printing a line
// moves down by the line height of the current font and back to x = 0;
// a line that would not fit on the page starts a new page first.
//
// Every output call returns false once the job has failed; error() tells
// why. The job then stays failed, and draws nothing more, until end_job().

#include <QFont>
#include <QRectF>
#include <functional>
#include <memory>
#include <string>

class QPainter;
class QPrinter;

namespace kyt {

enum class PageOrientation { portrait, landscape };

class Printer {
public:
    // Paints into the page: the painter works in device pixels, and rect is
    // the rectangle asked for, in those pixels.
    using PaintFn = std::function<void(QPainter& painter, const QRectF& rect)>;

    virtual ~Printer() = default;

    // Takes effect on the next page begun: before the first output of a job,
    // or before new_page().
    virtual void set_orientation(PageOrientation orientation) = 0;
    virtual PageOrientation orientation() const = 0;

    virtual void set_font_name(const std::string& name) = 0;
    virtual void set_font_size(double points) = 0;
    virtual void set_bold(bool on) = 0;
    virtual void set_italic(bool on) = 0;

    // Where the next text starts, in inches.
    virtual void set_x(double inches) = 0;
    virtual double x() const = 0;
    virtual void set_y(double inches) = 0;
    virtual double y() const = 0;

    // Prints text at the current position and leaves the position after it,
    // on the same line. A tab moves to the next print zone; other control
    // characters (a form feed, say) are not printed.
    virtual bool print(const std::string& text) = 0;
    // Moves x to the next print zone: zones are 14 columns of the current
    // font wide, counted from the left edge.
    virtual void next_zone() = 0;
    // Prints text (nothing for an empty line) and moves to the next line.
    virtual bool print_line(const std::string& text = {}) = 0;
    virtual bool new_page() = 0;

    // The printable area of the page in the current orientation, inches.
    virtual double page_width() const = 0;
    virtual double page_height() const = 0;

    // Paints into a rectangle of the current page given in inches; the part
    // outside the printable area is cut away.
    virtual bool paint(const QRectF& inches, const PaintFn& fn) = 0;

    // Ends the job: the pages go to the printer, or the PDF file is made.
    // True when nothing was printed, too.
    virtual bool end_job() = 0;

    // Why the job failed; empty while all went well.
    virtual std::string error() const = 0;
};

struct QtPrinterOptions {
    // A PDF file even where a printer exists.
    bool always_pdf = false;
    // The folder of the PDF files; empty: the save folder.
    std::string pdf_folder;
    // The PDF file's name in that folder; empty: a new name for each job,
    // "kyt-print-" with the date and time.
    std::string pdf_name;
    // Tell the user, in a message box, where the PDF file went, or that it
    // could not be written.
    bool tell = true;
};

// The real printer: the system's default printer when there is one, else a
// PDF file. The PDF is written under a temporary name in its folder and
// takes its own name only when it is whole.
class QtPrinter : public Printer {
public:
    QtPrinter();
    explicit QtPrinter(QtPrinterOptions options);
    ~QtPrinter() override;

    void set_orientation(PageOrientation orientation) override;
    PageOrientation orientation() const override { return orientation_; }
    void set_font_name(const std::string& name) override;
    void set_font_size(double points) override;
    void set_bold(bool on) override;
    void set_italic(bool on) override;
    void set_x(double inches) override { x_ = inches; }
    double x() const override { return x_; }
    void set_y(double inches) override { y_ = inches; }
    double y() const override { return y_; }
    bool print(const std::string& text) override;
    void next_zone() override;
    bool print_line(const std::string& text = {}) override;
    bool new_page() override;
    double page_width() const override;
    double page_height() const override;
    bool paint(const QRectF& inches, const PaintFn& fn) override;
    bool end_job() override;
    std::string error() const override { return error_; }

    // The PDF file the last finished job wrote; empty when it went to a
    // printer or failed.
    const std::string& last_pdf() const { return last_pdf_; }

private:
    QPrinter& device() const;
    bool begin_job();
    bool fail(const std::string& why);
    bool fits_line();
    double line_height() const;
    QFont font() const;
    void reset_job();
    std::string next_pdf_path() const;

    QtPrinterOptions options_;
    PageOrientation orientation_ = PageOrientation::portrait;
    std::string font_name_ = "Arial";
    double font_points_ = 12;
    bool bold_ = false, italic_ = false;
    double x_ = 0, y_ = 0;

    mutable std::unique_ptr<QPrinter> printer_;
    std::unique_ptr<QPainter> painter_;
    bool to_pdf_ = false;
    bool failed_ = false;
    std::string error_;
    std::string pdf_path_, pdf_part_path_;
    std::string last_pdf_;
};

}  // namespace kyt
