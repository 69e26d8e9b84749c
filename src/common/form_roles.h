#pragma once
// The roles in which the main window reaches forms that it hands work to.
// The main window knows a form by its name and calls it through its role,
// never by looking into the form's widgets or timers.

class QWidget;

namespace kyt {

// A live test screen: single-rate or occlusion. Once the main window has
// shown it, starting the poll brings the test to life.
class LiveTestScreen {
public:
    virtual ~LiveTestScreen() = default;
    // Enables the timer that polls the analyser.
    virtual void start_polling() = 0;
};

// The report screen, which is the capture panel of a download and the report
// editor.
class ReportScreen {
public:
    virtual ~ReportScreen() = default;
    // Lays the form out as the small capture panel, starts the capture timer,
    // centres and shows it.
    virtual void show_as_capture_panel() = 0;
    // True while the form has the capture panel's small layout.
    virtual bool is_capture_panel() const = 0;
    // Stops the capture timer, disables the editing entries that need a
    // report in hand, takes the editor's caption, centres and shows it.
    virtual void show_as_editor() = 0;
    // Disables the Print entry of the File menu.
    virtual void disable_print() = 0;
};

}  // namespace kyt
