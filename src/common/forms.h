#pragma once
// The forms are single instances, created and loaded at first use and
// unloaded by name, as the console's procedures expect. A form's constructor
// is its load handler; unloading deletes it, and its members are gone.

#include <functional>

#include <QPointer>
#include <QString>
#include <QWidget>

namespace kyt::forms {

// The loaded form of that class name, or null.
QWidget* find(const QString& name);

// Forms are also reached by name, so that a procedure can name a form that
// this build may not hold: each built form registers how it is made.
void register_factory(const QString& name, std::function<QWidget*()> make);
bool has_factory(const QString& name);
// The form of that name, created and loaded when it is not yet; null when no
// such form is built.
QWidget* get(const QString& name);
void remember(const QString& name, QWidget* form);
// Deletes the form of that name if it is loaded; does nothing otherwise.
void unload(const QString& name);

template <class F>
QString name_of() {
    return QString::fromLatin1(F::staticMetaObject.className());
}

template <class F>
bool is_loaded() {
    return find(name_of<F>()) != nullptr;
}

template <class F>
F* loaded() {
    return static_cast<F*>(find(name_of<F>()));
}

// The form, created and loaded when it is not yet.
template <class F>
F* get() {
    if (F* f = loaded<F>()) return f;
    F* f = new F();
    remember(name_of<F>(), f);
    return f;
}

template <class F>
void register_form() {
    register_factory(name_of<F>(), [] { return static_cast<QWidget*>(new F()); });
}

template <class F>
void unload() {
    unload(name_of<F>());
}

}  // namespace kyt::forms

namespace kyt {

// Puts a form in the middle of the screen.
void center_form(QWidget* form);

}  // namespace kyt
