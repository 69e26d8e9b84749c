#pragma once
// The console's chart: the live graphs of the single-rate and occlusion
// tests, the stored-log graph and the trumpet graph are all this one widget.
// A form's .ui holds it as a promoted QWidget; its objectName is the chart's
// name (RTGraph, OTGraph, DGraph, TGraph).
//
// What it offers, by role:
// - numbered point sets 1..N, each with a legend text, a colour, a curve
//   style (one of which hides the curve and keeps its data) and the y axis it
//   is drawn against, left or right;
// - points with x positions, loaded one by one or a whole series at once;
//   a stretch of them chosen as first and last drawn point;
// - a scrolling mode for live tests: a fixed number of points in view, the
//   newest entering at the right, the oldest leaving;
// - x, left and right axes with ranges and ticks set by the program (an axis
//   follows its data only when asked), axis titles, a chart title, a legend
//   that can be hidden, text sizes by class, a placeholder text while there
//   is nothing to draw;
// - repaint bounded to 25 a second: every change asks for a repaint, and the
//   requests of a burst are served by one draw at most every 40 ms; a full
//   draw happens at once when asked;
// - drawing itself into a rectangle of any painter (a printed page) and
//   writing itself to an image file.

#include <QColor>
#include <QElapsedTimer>
#include <QSize>
#include <QTimer>
#include <QWidget>
#include <optional>
#include <string>
#include <vector>

#include "common/image_files.h"

class QCustomPlot;
class QCPAxis;
class QCPGraph;
class QCPItemText;
class QCPTextElement;
class QPainter;

namespace kyt {

enum class ChartAxis { x, left, right };

// line: points joined; points: marks only; line_and_points: both;
// hidden: not drawn, data kept (showing it again needs no reload).
enum class CurveStyle { line, points, line_and_points, hidden };

// The classes of text whose size is set as a percentage of the normal size.
enum class ChartText { title, axis_titles, tick_labels, legend };

struct AxisRange {
    double min = 0;
    double max = 0;
    bool operator==(const AxisRange&) const = default;
};

class ChartTicker;

class Chart : public QWidget {
    Q_OBJECT

public:
    // Normal text size in pixels of a 96-dpi screen (9 points); the classes
    // are percentages of it. Pixel sizes make the text keep its proportion to
    // the chart on every device the chart is drawn on.
    static constexpr int normal_text_pixels = 12;
    // The chart refuses points beyond this many in one set: a limit of its
    // own, told to the caller, instead of running out of memory.
    static constexpr int max_points_per_set = 1'000'000;
    static constexpr int max_sets = 64;
    // Draws served by the repaint requests are at least this far apart.
    static constexpr int min_draw_interval_ms = 40;

    explicit Chart(QWidget* parent = nullptr);
    ~Chart() override;

    // --- sets ---------------------------------------------------------------
    // Sets 1..n (at most max_sets). New sets are empty lines on the left
    // axis with the next colour of the chart's palette; sets above n are
    // dropped with their data.
    void set_set_count(int n);
    int set_count() const { return static_cast<int>(sets_.size()); }
    // A blank text leaves the set out of the legend.
    void set_legend_text(int set, const std::string& text);
    std::string legend_text(int set) const;
    void set_color(int set, const QColor& color);
    void set_curve_style(int set, CurveStyle style);
    CurveStyle curve_style(int set) const;
    // ChartAxis::left or ChartAxis::right.
    void set_axis_of(int set, ChartAxis axis);

    // --- points -------------------------------------------------------------
    // Appends a point. False, and nothing stored, when the set does not exist,
    // a value is not a finite number or the set is full.
    bool add_point(int set, double x, double y);
    // Replaces the whole series of a set (x and y of equal length). False, and
    // the set unchanged, on the same faults as add_point.
    bool set_points(int set, const std::vector<double>& x, const std::vector<double>& y);
    void clear_set(int set);
    // Every set emptied: the chart shows its placeholder text.
    void clear();
    int point_count(int set) const;
    // Point numbers count from 1; nothing for a point that is not there.
    std::optional<double> point_x(int set, int point) const;
    std::optional<double> point_y(int set, int point) const;
    // Only points first..last (counted from 1, both included) of every set are
    // drawn; a last of 0 or below means up to the last point.
    void set_drawn_points(int first, int last);
    int first_drawn_point() const { return first_drawn_; }
    int last_drawn_point() const { return last_drawn_; }

    // --- scrolling mode -----------------------------------------------------
    // With n above 0 the chart shows the last n points of each set at x = 1
    // to n, newest at n, and the x axis runs from 1 to n. 0 ends the mode.
    // Entering or leaving it empties the sets.
    void set_scrolling(int visible_points);
    int scrolling() const { return scroll_points_; }
    // Adds the newest value of a set in scrolling mode; the oldest leaves
    // once n are held. False when the value is not finite, the set does not
    // exist or the chart is not scrolling.
    bool scroll_in(int set, double y);

    // --- axes and texts -----------------------------------------------------
    // Setting a range ends the automatic range of that axis.
    void set_range(ChartAxis axis, double min, double max);
    AxisRange range(ChartAxis axis) const;
    // The axis follows the drawn points of the sets on it (the right axis
    // does so from the start, until a range is set).
    void set_auto_range(ChartAxis axis);
    // Major ticks every `major`, minor ticks every `minor` (0: chosen by the chart).
    void set_tick_step(ChartAxis axis, double major, double minor = 0);
    // The axis range cut into equal parts, a tick at each end of each part.
    void set_tick_divisions(ChartAxis axis, int parts);
    void set_axis_title(ChartAxis axis, const std::string& title);
    void set_title(const std::string& title);
    void set_legend_visible(bool visible);
    bool legend_visible() const;
    void set_text_size(ChartText text, int percent);
    // Shown in the middle of the chart while no set holds a point.
    void set_placeholder(const std::string& text, int size_percent = 100);
    bool placeholder_shown() const;

    // --- drawing ------------------------------------------------------------
    // Asks for a repaint; requests are merged so that draws come at most every
    // 40 ms. Every change above asks for one by itself.
    void repaint_soon();
    // A full draw, at once.
    void draw_now();
    // The values of a set that a draw shows now, left to right: drawn points
    // whose x lies in the x range.
    std::vector<double> values_in_view(int set);
    // Draws the chart into the rectangle of a painter (in the painter's
    // coordinates), as vectors, laid out as a 96-dpi screen would show a
    // chart of that physical size: on a 600-dpi page a 6-inch box is laid
    // out 576 pixels wide, so that the texts keep their size on paper.
    void render(QPainter& painter, const QRectF& target);
    // The chart as it would look in a window of the given size.
    QImage to_image(QSize size);
    // Writes the chart to an image file of the given pixel size. Returns the
    // reason when it could not (empty when written); see image_files.h.
    std::string write_image(const std::string& path, ImageFormat format, QSize size);

signals:
    // A draw has been done (throttled, full, or the widget's own).
    void drawn();

private:
    struct Set {
        QCPGraph* graph = nullptr;
        std::vector<double> x, y;
        std::string legend;
        CurveStyle style = CurveStyle::line;
        ChartAxis axis = ChartAxis::left;
        bool dirty = true;
    };
    Set* find(int set);
    const Set* find(int set) const;
    QCPAxis* axis_of(ChartAxis axis) const;
    ChartTicker* ticker_of(ChartAxis axis) const;
    void changed();
    void sync();
    void apply_style(Set& s);
    void apply_fonts();
    void update_legend();
    void update_right_axis();
    void update_placeholder();
    QFont text_font(int percent, bool bold = false) const;

    QCustomPlot* plot_;
    QCPTextElement* title_;
    QCPItemText* placeholder_;
    std::vector<Set> sets_;
    int first_drawn_ = 1;
    int last_drawn_ = 0;
    int scroll_points_ = 0;
    bool auto_range_[3] = {false, false, true};
    int text_percent_[4] = {150, 100, 100, 100};
    int placeholder_percent_ = 100;
    QTimer throttle_;
    QElapsedTimer since_draw_;
};

}  // namespace kyt
