#include "common/services.h"

#include "app/dialogs/file_dialogs.h"
#include "app/settings/ini_settings_store.h"
#include "common/clock.h"
#include "common/message_boxes.h"
#include "common/printer.h"
#include "link/qt_serial_line.h"

namespace kyt {

Services& services() {
    static Services s;
    return s;
}

bool save_settings_now() {
    const std::string why = services().settings->flush();
    if (why.empty()) return true;
    services().boxes->show(why, box_critical, "ERROR");
    return false;
}

void install_real_services() {
    Services& s = services();
    s.settings = std::make_unique<IniSettingsStore>();
    s.serial = std::make_unique<QtSerialLine>(*s.settings);
    s.boxes = std::make_unique<QtMessageBoxes>();
    s.dialogs = std::make_unique<QtFileDialogs>();
    s.clock = std::make_unique<SystemClock>();
    s.printer = std::make_unique<QtPrinter>();
}

}  // namespace kyt
