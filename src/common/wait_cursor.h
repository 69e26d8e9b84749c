#pragma once
// The hourglass while a procedure works, the normal pointer after it, on
// every way out of the procedure.

#include <QApplication>

namespace kyt {

struct WaitCursor {
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

}  // namespace kyt
