#include "common/field_events.h"

#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>

#include <utility>

namespace kyt {

FieldEvents::FieldEvents(QWidget* form) : QObject(form), form_(form) {}

void FieldEvents::watch(QWidget* widget, int field) {
    fields_[widget] = field;
    widget->installEventFilter(this);
    // An editable combo box passes its keys on to its own text box.
    if (auto* combo = qobject_cast<QComboBox*>(widget); combo && combo->lineEdit()) {
        fields_[combo->lineEdit()] = field;
        combo->lineEdit()->installEventFilter(this);
    }
}

bool FieldEvents::settle() {
    const std::vector<int> fields = std::exchange(pending_, {});
    if (!form_->isVisible() || !on_leave) return true;
    bool ok = true;
    for (int field : fields) ok = on_leave(field) && ok;
    return ok;
}

void FieldEvents::return_focus(QWidget* widget) {
    returning_ = true;
    widget->setFocus(Qt::OtherFocusReason);
    returning_ = false;
}

namespace {

bool is_modifier(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta ||
           key == Qt::Key_AltGr || key == Qt::Key_CapsLock;
}

}  // namespace

bool FieldEvents::eventFilter(QObject* watched, QEvent* event) {
    const auto it = fields_.find(watched);
    if (it == fields_.end()) return false;
    const int field = it->second;
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (is_modifier(key->key())) return false;
        if (on_key) on_key(field);
        if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) return false;
        if (on_enter) on_enter(field);
        return true;
    }
    if (event->type() == QEvent::FocusOut && !returning_) {
        // A drop-down list opening, or another window coming to the front,
        // is not leaving the field.
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason) return false;
        pending_.push_back(field);
        QTimer::singleShot(0, this, [this] { settle(); });
    }
    return false;
}

}  // namespace kyt
