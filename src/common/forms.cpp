#include "common/forms.h"

#include <QApplication>
#include <QGuiApplication>
#include <QHash>
#include <QScreen>

namespace kyt::forms {

namespace {
QHash<QString, QPointer<QWidget>>& registry() {
    static QHash<QString, QPointer<QWidget>> r;
    return r;
}
}  // namespace

QWidget* find(const QString& name) {
    const auto it = registry().constFind(name);
    return it == registry().constEnd() ? nullptr : it->data();
}

namespace {

// Watches the deactivation of the console's windows: when one loses the
// activation and no other window of the console takes it, another program
// has it, and the next activation comes from outside.
class ActivationWatch : public QObject {
public:
    bool from_outside = false;

protected:
    bool eventFilter(QObject* watched, QEvent* e) override {
        if (e->type() == QEvent::WindowDeactivate && watched->isWidgetType() &&
            static_cast<QWidget*>(watched)->isWindow())
            from_outside = QApplication::activeWindow() == nullptr;
        return false;
    }
};

ActivationWatch& activation_watch() {
    static ActivationWatch* watch = [] {
        auto* w = new ActivationWatch;
        w->setParent(qApp);
        qApp->installEventFilter(w);
        return w;
    }();
    return *watch;
}

}  // namespace

void remember(const QString& name, QWidget* form) {
    activation_watch();
    registry().insert(name, form);
}

namespace {
QHash<QString, std::function<QWidget*()>>& factories() {
    static QHash<QString, std::function<QWidget*()>> f;
    return f;
}
// Every registered name in the order of registration, and whether it stays at shutdown.
QList<QPair<QString, AtExit>>& registered() {
    static QList<QPair<QString, AtExit>> r;
    return r;
}
}  // namespace

void register_factory(const QString& name, std::function<QWidget*()> make, AtExit at_exit) {
    factories().insert(name, std::move(make));
    for (auto& entry : registered())
        if (entry.first == name) {
            entry.second = at_exit;
            return;
        }
    registered().append({name, at_exit});
}

bool has_factory(const QString& name) { return factories().contains(name); }

QStringList closing_list() {
    QStringList names;
    for (const auto& [name, at_exit] : registered())
        if (at_exit == AtExit::close) names << name;
    return names;
}

QWidget* get(const QString& name) {
    if (QWidget* f = find(name)) return f;
    const auto it = factories().constFind(name);
    if (it == factories().constEnd()) return nullptr;
    QWidget* f = (*it)();
    remember(name, f);
    return f;
}

void unload(const QString& name) {
    QPointer<QWidget> f = registry().take(name);
    if (!f) return;
    // Deleted once control is back in the event loop, so that a form may
    // unload itself from its own handler; it is gone from the registry at once.
    f->hide();
    f->deleteLater();
}

}  // namespace kyt::forms

namespace kyt {

bool activation_from_outside() { return forms::activation_watch().from_outside; }

void center_form(QWidget* form) {
    const QScreen* screen = form->screen() ? form->screen() : QGuiApplication::primaryScreen();
    if (!screen) return;
    const QRect area = screen->geometry();
    const QSize size = form->frameGeometry().size();
    form->move(area.left() + (area.width() - size.width()) / 2, area.top() + (area.height() - size.height()) / 2);
}

}  // namespace kyt
