#pragma once
// The forms are single instances, created and loaded at first use and
// unloaded by name, as the console's procedures expect. A form's constructor
// is its load handler; unloading deletes it, and its members are gone.

#include <functional>

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

namespace kyt::forms {

// The loaded form of that class name, or null.
QWidget* find(const QString& name);

// Whether a form goes with the others when the program shuts down.
enum class AtExit { close, stay };

// Forms are also reached by name, so that a procedure can name a form that
// this build may not hold: each built form registers how it is made, and
// whether it is closed at shutdown. A name registered again keeps its place.
void register_factory(const QString& name, std::function<QWidget*()> make, AtExit at_exit = AtExit::close);
bool has_factory(const QString& name);
// The registered forms that shutdown closes, in the order they were registered.
QStringList closing_list();
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
void register_form(AtExit at_exit = AtExit::close) {
    register_factory(name_of<F>(), [] { return static_cast<QWidget*>(new F()); }, at_exit);
}

// The form of that name in one of its roles (an interface it implements, as
// the live test screens and the report screen do), created and loaded when
// it is not yet; null when no such form is built or it has no such role.
template <class Role>
Role* get_as(const QString& name) {
    return dynamic_cast<Role*>(get(name));
}

template <class F>
void unload() {
    unload(name_of<F>());
}

}  // namespace kyt::forms

namespace kyt {

// Puts a form in the middle of the screen.
void center_form(QWidget* form);

// True while a window of the console is being activated because the console
// as a whole came back from another program, false when the operator moved
// from one of its windows to another. A form's activate handler runs only
// for the latter, as the operator expects of a window inside the program.
bool activation_from_outside();

}  // namespace kyt
