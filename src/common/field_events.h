#pragma once
// The two moments at which a text field of a dialog checks its entry: the
// Enter key, and the focus leaving it for another control of the same window.
// The leave check runs once the focus has settled on the new control, never
// inside the focus change itself, so that a check may show a box and put the
// focus back. A button that acts on the fields first calls settle(), which
// runs a pending leave check at once: the field is checked before the click
// acts, as it would be had the focus moved there the slow way.

#include <QObject>

#include <functional>
#include <map>
#include <vector>

class QWidget;

namespace kyt {

class FieldEvents : public QObject {
public:
    // A check gives false when it told the operator of a bad entry.
    using Check = std::function<bool(int field)>;

    explicit FieldEvents(QWidget* form);

    // The widget (an editable combo box or a text box) is field number `field`.
    void watch(QWidget* widget, int field);

    Check on_enter;                   // Enter pressed in the field; the key goes no further
    Check on_leave;                   // the focus left the field
    std::function<void(int)> on_key;  // any key pressed in the field, Enter included, before on_enter

    // Runs the pending leave checks now, in the order the fields were left; false when it told of a bad entry.
    bool settle();
    // Puts the focus on a widget without that move counting as leaving the
    // field that has the focus now.
    void return_focus(QWidget* widget);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* form_;
    std::map<QObject*, int> fields_;
    std::vector<int> pending_;
    bool returning_ = false;
};

}  // namespace kyt
