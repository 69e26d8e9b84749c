#include "common/chart.h"

#include <QPaintDevice>
#include <QPainter>
#include <QPicture>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <qcustomplot.h>

#include "common/qt_text.h"

namespace kyt {

// Ticks as the program sets them: a fixed major step with an optional minor
// step, or the range cut into equal parts; otherwise QCustomPlot's own choice.
class ChartTicker : public QCPAxisTicker {
public:
    double major = 0;
    double minor = 0;
    int parts = 0;

protected:
    // Too many ticks for the range fall back to the automatic choice rather
    // than build millions of labels.
    static constexpr double max_ticks = 1000;

    double getTickStep(const QCPRange& range) override {
        if (parts > 0 && range.size() > 0) return range.size() / parts;
        if (major > 0 && range.size() / major <= max_ticks) return major;
        return QCPAxisTicker::getTickStep(range);
    }
    int getSubTickCount(double step) override {
        if (minor > 0 && step > 0 && step / minor <= max_ticks) return std::max(0, static_cast<int>(std::lround(step / minor)) - 1);
        return QCPAxisTicker::getSubTickCount(step);
    }
    QVector<double> createTickVector(double step, const QCPRange& range) override {
        if (parts > 0 && step > 0) {
            QVector<double> ticks;
            for (int i = 0; i <= parts; ++i) ticks.append(range.lower + step * i);
            return ticks;
        }
        return QCPAxisTicker::createTickVector(step, range);
    }
};

namespace {

const QColor set_colors[] = {QColor(0, 0, 200), QColor(200, 0, 0), QColor(0, 140, 0), QColor(160, 0, 160),
                          QColor(0, 140, 140), QColor(170, 110, 0), QColor(80, 80, 80), QColor(0, 0, 0)};

bool finite(double v) { return std::isfinite(v); }

bool blank(const std::string& s) {
    return std::all_of(s.begin(), s.end(), [](char c) { return c == ' ' || c == '\t'; });
}

}  // namespace

Chart::Chart(QWidget* parent) : QWidget(parent), plot_(new QCustomPlot(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(plot_);

    plot_->setBackground(Qt::white);
    // The chart offers nothing to the keyboard: the forms' buttons move it.
    plot_->setFocusPolicy(Qt::NoFocus);
    plot_->setAntialiasedElements(QCP::aePlottables);
    plot_->plotLayout()->insertRow(0);
    title_ = new QCPTextElement(plot_, QString());
    plot_->plotLayout()->addElement(0, 0, title_);

    for (QCPAxis* axis : {plot_->xAxis, plot_->yAxis, plot_->yAxis2}) {
        axis->setTicker(QSharedPointer<QCPAxisTicker>(new ChartTicker));
        axis->setRange(0, 10);
    }
    plot_->yAxis2->setVisible(false);

    placeholder_ = new QCPItemText(plot_);
    placeholder_->setClipToAxisRect(false);
    placeholder_->position->setType(QCPItemPosition::ptAxisRectRatio);
    placeholder_->position->setCoords(0.5, 0.5);
    placeholder_->setPositionAlignment(Qt::AlignCenter);
    placeholder_->setVisible(false);

    plot_->setAutoAddPlottableToLegend(false);
    plot_->legend->setVisible(true);
    apply_fonts();

    throttle_.setSingleShot(true);
    throttle_.setTimerType(Qt::PreciseTimer);
    connect(&throttle_, &QTimer::timeout, this, &Chart::draw_now);
    connect(plot_, &QCustomPlot::afterReplot, this, &Chart::drawn);
}

Chart::~Chart() = default;

// --- sets ---------------------------------------------------------------------

Chart::Set* Chart::find(int set) {
    return set >= 1 && set <= set_count() ? &sets_[static_cast<std::size_t>(set - 1)] : nullptr;
}

const Chart::Set* Chart::find(int set) const {
    return set >= 1 && set <= set_count() ? &sets_[static_cast<std::size_t>(set - 1)] : nullptr;
}

void Chart::set_set_count(int n) {
    n = std::clamp(n, 0, max_sets);
    while (set_count() > n) {
        plot_->removeGraph(sets_.back().graph);
        sets_.pop_back();
    }
    while (set_count() < n) {
        Set s;
        s.graph = plot_->addGraph(plot_->xAxis, plot_->yAxis);
        s.graph->setPen(QPen(set_colors[sets_.size() % std::size(set_colors)], 1.5));
        sets_.push_back(std::move(s));
        apply_style(sets_.back());
    }
    update_legend();
    update_right_axis();
    changed();
}

void Chart::set_legend_text(int set, const std::string& text) {
    if (Set* s = find(set)) {
        s->legend = text;
        s->graph->setName(qs(text));
        update_legend();
        changed();
    }
}

std::string Chart::legend_text(int set) const {
    const Set* s = find(set);
    return s ? s->legend : std::string();
}

void Chart::set_color(int set, const QColor& color) {
    if (Set* s = find(set)) {
        QPen pen = s->graph->pen();
        pen.setColor(color);
        s->graph->setPen(pen);
        apply_style(*s);
        changed();
    }
}

void Chart::set_curve_style(int set, CurveStyle style) {
    if (Set* s = find(set)) {
        s->style = style;
        apply_style(*s);
        changed();
    }
}

CurveStyle Chart::curve_style(int set) const {
    const Set* s = find(set);
    return s ? s->style : CurveStyle::line;
}

void Chart::set_axis_of(int set, ChartAxis axis) {
    Set* s = find(set);
    if (!s || axis == ChartAxis::x) return;
    s->axis = axis;
    s->graph->setValueAxis(axis_of(axis));
    update_right_axis();
    changed();
}

// The right axis stands only while a set is drawn against it.
void Chart::update_right_axis() {
    plot_->yAxis2->setVisible(std::any_of(sets_.begin(), sets_.end(), [](const Set& t) { return t.axis == ChartAxis::right; }));
}

void Chart::apply_style(Set& s) {
    const QColor color = s.graph->pen().color();
    s.graph->setVisible(s.style != CurveStyle::hidden);
    const bool line = s.style == CurveStyle::line || s.style == CurveStyle::line_and_points;
    const bool marks = s.style == CurveStyle::points || s.style == CurveStyle::line_and_points;
    s.graph->setLineStyle(line ? QCPGraph::lsLine : QCPGraph::lsNone);
    s.graph->setScatterStyle(marks ? QCPScatterStyle(QCPScatterStyle::ssDisc, color, color, 5) : QCPScatterStyle());
}

void Chart::update_legend() {
    // Only sets with a legend text stand in the legend, in set order.
    plot_->legend->clearItems();
    for (Set& s : sets_)
        if (!blank(s.legend)) s.graph->addToLegend();
}

// --- points -------------------------------------------------------------------

bool Chart::add_point(int set, double x, double y) {
    Set* s = find(set);
    if (!s || !finite(x) || !finite(y) || s->y.size() >= static_cast<std::size_t>(max_points_per_set)) return false;
    s->x.push_back(x);
    s->y.push_back(y);
    s->dirty = true;
    changed();
    return true;
}

bool Chart::set_points(int set, const std::vector<double>& x, const std::vector<double>& y) {
    Set* s = find(set);
    if (!s || x.size() != y.size() || x.size() > static_cast<std::size_t>(max_points_per_set)) return false;
    if (!std::all_of(x.begin(), x.end(), finite) || !std::all_of(y.begin(), y.end(), finite)) return false;
    s->x = x;
    s->y = y;
    s->dirty = true;
    changed();
    return true;
}

void Chart::clear_set(int set) {
    if (Set* s = find(set)) {
        s->x.clear();
        s->y.clear();
        s->dirty = true;
        changed();
    }
}

void Chart::clear() {
    for (int i = 1; i <= set_count(); ++i) clear_set(i);
    changed();
}

int Chart::point_count(int set) const {
    const Set* s = find(set);
    return s ? static_cast<int>(s->y.size()) : 0;
}

std::optional<double> Chart::point_x(int set, int point) const {
    const Set* s = find(set);
    if (!s || point < 1 || point > static_cast<int>(s->x.size())) return std::nullopt;
    return s->x[static_cast<std::size_t>(point - 1)];
}

std::optional<double> Chart::point_y(int set, int point) const {
    const Set* s = find(set);
    if (!s || point < 1 || point > static_cast<int>(s->y.size())) return std::nullopt;
    return s->y[static_cast<std::size_t>(point - 1)];
}

void Chart::set_drawn_points(int first, int last) {
    first_drawn_ = std::max(1, first);
    last_drawn_ = std::max(0, last);
    for (Set& s : sets_) s.dirty = true;
    changed();
}

// --- scrolling ----------------------------------------------------------------

void Chart::set_scrolling(int visible_points) {
    scroll_points_ = std::clamp(visible_points, 0, max_points_per_set);
    for (Set& s : sets_) {
        s.x.clear();
        s.y.clear();
        s.dirty = true;
    }
    if (scroll_points_ > 0) {
        first_drawn_ = 1;
        last_drawn_ = 0;
        set_range(ChartAxis::x, 1, std::max(2, scroll_points_));
    }
    changed();
}

bool Chart::scroll_in(int set, double y) {
    Set* s = find(set);
    if (!s || scroll_points_ < 1 || !finite(y)) return false;
    s->y.push_back(y);
    if (s->y.size() > static_cast<std::size_t>(scroll_points_)) s->y.erase(s->y.begin());
    // The newest point stands at x = n, those before it to its left.
    const std::size_t n = s->y.size();
    s->x.resize(n);
    for (std::size_t i = 0; i < n; ++i) s->x[i] = static_cast<double>(scroll_points_) - static_cast<double>(n - 1 - i);
    s->dirty = true;
    changed();
    return true;
}

// --- axes and texts -----------------------------------------------------------

QCPAxis* Chart::axis_of(ChartAxis axis) const {
    switch (axis) {
        case ChartAxis::x: return plot_->xAxis;
        case ChartAxis::left: return plot_->yAxis;
        case ChartAxis::right: return plot_->yAxis2;
    }
    return plot_->xAxis;
}

ChartTicker* Chart::ticker_of(ChartAxis axis) const {
    return static_cast<ChartTicker*>(axis_of(axis)->ticker().data());
}

void Chart::set_range(ChartAxis axis, double min, double max) {
    if (!finite(min) || !finite(max)) return;
    auto_range_[static_cast<int>(axis)] = false;
    axis_of(axis)->setRange(min, max);
    changed();
}

AxisRange Chart::range(ChartAxis axis) const {
    const QCPRange r = axis_of(axis)->range();
    return {r.lower, r.upper};
}

void Chart::set_auto_range(ChartAxis axis) {
    auto_range_[static_cast<int>(axis)] = true;
    changed();
}

void Chart::set_tick_step(ChartAxis axis, double major, double minor) {
    ChartTicker* t = ticker_of(axis);
    t->parts = 0;
    t->major = finite(major) && major > 0 ? major : 0;
    t->minor = finite(minor) && minor > 0 ? minor : 0;
    changed();
}

void Chart::set_tick_divisions(ChartAxis axis, int parts) {
    ChartTicker* t = ticker_of(axis);
    t->parts = std::clamp(parts, 0, 1000);
    t->major = 0;
    t->minor = 0;
    changed();
}

void Chart::set_axis_title(ChartAxis axis, const std::string& title) {
    axis_of(axis)->setLabel(qs(title));
    changed();
}

void Chart::set_title(const std::string& title) {
    title_->setText(qs(title));
    // Assistive technology reads the chart by its title.
    setAccessibleName(qs(title));
    plot_->setAccessibleName(qs(title));
    changed();
}

void Chart::set_legend_visible(bool visible) {
    plot_->legend->setVisible(visible);
    changed();
}

bool Chart::legend_visible() const { return plot_->legend->visible(); }

QFont Chart::text_font(int percent, bool bold) const {
    // "Arial", which fontconfig answers with its metric twin Liberation Sans.
    QFont f(QStringLiteral("Arial"));
    f.setPixelSize(std::max(1, normal_text_pixels * std::clamp(percent, 1, 1000) / 100));
    f.setBold(bold);
    return f;
}

void Chart::set_text_size(ChartText text, int percent) {
    text_percent_[static_cast<int>(text)] = std::clamp(percent, 1, 1000);
    apply_fonts();
    changed();
}

void Chart::apply_fonts() {
    title_->setFont(text_font(text_percent_[static_cast<int>(ChartText::title)], true));
    for (QCPAxis* axis : {plot_->xAxis, plot_->yAxis, plot_->yAxis2}) {
        axis->setLabelFont(text_font(text_percent_[static_cast<int>(ChartText::axis_titles)]));
        axis->setTickLabelFont(text_font(text_percent_[static_cast<int>(ChartText::tick_labels)]));
    }
    plot_->legend->setFont(text_font(text_percent_[static_cast<int>(ChartText::legend)]));
    placeholder_->setFont(text_font(placeholder_percent_));
}

void Chart::set_placeholder(const std::string& text, int size_percent) {
    placeholder_->setText(qs(text));
    placeholder_percent_ = std::clamp(size_percent, 1, 1000);
    apply_fonts();
    changed();
}

bool Chart::placeholder_shown() const { return placeholder_->visible(); }

void Chart::update_placeholder() {
    const bool empty = std::all_of(sets_.begin(), sets_.end(), [](const Set& s) { return s.y.empty(); });
    placeholder_->setVisible(empty && !placeholder_->text().isEmpty());
}

// --- drawing ------------------------------------------------------------------

void Chart::changed() { repaint_soon(); }

void Chart::repaint_soon() {
    if (throttle_.isActive()) return;
    qint64 wait = 0;
    if (since_draw_.isValid()) wait = std::max<qint64>(0, min_draw_interval_ms - since_draw_.elapsed());
    throttle_.start(static_cast<int>(wait));
}

// Hands the stored points (the drawn stretch of them) to the plot, and
// brings the automatic axes to what is drawn.
void Chart::sync() {
    for (Set& s : sets_) {
        if (!s.dirty) continue;
        const std::size_t n = s.y.size();
        const std::size_t first = std::min<std::size_t>(n, static_cast<std::size_t>(first_drawn_ - 1));
        const std::size_t last = last_drawn_ > 0 ? std::min<std::size_t>(n, static_cast<std::size_t>(last_drawn_)) : n;
        QVector<double> keys, values;
        if (last > first) {
            keys = QVector<double>(s.x.begin() + static_cast<std::ptrdiff_t>(first), s.x.begin() + static_cast<std::ptrdiff_t>(last));
            values = QVector<double>(s.y.begin() + static_cast<std::ptrdiff_t>(first), s.y.begin() + static_cast<std::ptrdiff_t>(last));
        }
        s.graph->setData(keys, values);
        s.dirty = false;
    }
    for (ChartAxis axis : {ChartAxis::x, ChartAxis::left, ChartAxis::right}) {
        if (!auto_range_[static_cast<int>(axis)]) continue;
        bool any = false;
        QCPRange total;
        for (Set& s : sets_) {
            if (axis != ChartAxis::x && s.axis != axis) continue;
            bool found = false;
            const QCPRange r = axis == ChartAxis::x ? s.graph->getKeyRange(found) : s.graph->getValueRange(found);
            if (!found) continue;
            total = any ? QCPRange(std::min(total.lower, r.lower), std::max(total.upper, r.upper)) : r;
            any = true;
        }
        if (!any) continue;
        if (total.size() == 0) total = QCPRange(total.lower - 1, total.upper + 1);
        axis_of(axis)->setRange(total);
    }
    update_placeholder();
}

void Chart::draw_now() {
    throttle_.stop();
    sync();
    plot_->replot(QCustomPlot::rpQueuedRefresh);
    since_draw_.start();
}

std::vector<double> Chart::values_in_view(int set) {
    sync();
    std::vector<double> out;
    const Set* s = find(set);
    if (!s || !s->graph->visible()) return out;
    const QCPRange r = plot_->xAxis->range();
    for (auto it = s->graph->data()->constBegin(); it != s->graph->data()->constEnd(); ++it)
        if (r.contains(it->key)) out.push_back(it->value);
    return out;
}

void Chart::render(QPainter& painter, const QRectF& target) {
    QPaintDevice* device = painter.device();
    if (!device || !painter.isActive() || target.width() < 1 || target.height() < 1) return;
    sync();
    // Laid out as a 96-dpi screen would show a chart of the target's size.
    const double dpi_x = std::max(1, device->logicalDpiX()), dpi_y = std::max(1, device->logicalDpiY());
    const int width = std::max(1, static_cast<int>(std::lround(target.width() * 96.0 / dpi_x)));
    const int height = std::max(1, static_cast<int>(std::lround(target.height() * 96.0 / dpi_y)));

    // Drawn as a picture and played into the painter: QCustomPlot paints
    // through a painter of its own, and a picture keeps lines and text as
    // vectors on any device.
    QPicture picture;
    {
        QCPPainter recorder(&picture);
        recorder.setMode(QCPPainter::pmVectorized);
        recorder.setMode(QCPPainter::pmNonCosmetic);
        plot_->toPainter(&recorder, width, height);
    }
    // Playing a picture already scales it from its resolution to the
    // device's; what is left is the rounding of the layout size.
    const double played_x = width * dpi_x / std::max(1, picture.logicalDpiX());
    const double played_y = height * dpi_y / std::max(1, picture.logicalDpiY());
    painter.save();
    painter.setClipRect(target, Qt::IntersectClip);
    painter.translate(target.topLeft());
    painter.scale(target.width() / played_x, target.height() / played_y);
    painter.drawPicture(0, 0, picture);
    painter.restore();
    repaint_soon();  // the widget's own layout comes back at the next draw
}

QImage Chart::to_image(QSize size) {
    if (size.width() < 1 || size.height() < 1 || size.width() > max_image_side || size.height() > max_image_side) return {};
    sync();
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        QCPPainter painter(&image);
        plot_->toPainter(&painter, size.width(), size.height());
    }
    repaint_soon();
    return image;
}

std::string Chart::write_image(const std::string& path, ImageFormat format, QSize size) {
    const QImage image = to_image(size);
    if (image.isNull())
        return "The image \"" + path + "\" was not written. The image size must be between 1 and " +
               std::to_string(max_image_side) + " pixels a side.";
    return write_image_file(image, path, format);
}

}  // namespace kyt
