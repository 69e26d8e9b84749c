#include "common/forms.h"

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

void remember(const QString& name, QWidget* form) { registry().insert(name, form); }

namespace {
QHash<QString, std::function<QWidget*()>>& factories() {
    static QHash<QString, std::function<QWidget*()>> f;
    return f;
}
}  // namespace

void register_factory(const QString& name, std::function<QWidget*()> make) { factories().insert(name, std::move(make)); }

bool has_factory(const QString& name) { return factories().contains(name); }

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

void center_form(QWidget* form) {
    const QScreen* screen = form->screen() ? form->screen() : QGuiApplication::primaryScreen();
    if (!screen) return;
    const QRect area = screen->geometry();
    const QSize size = form->frameGeometry().size();
    form->move(area.left() + (area.width() - size.width()) / 2, area.top() + (area.height() - size.height()) / 2);
}

}  // namespace kyt
