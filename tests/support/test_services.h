#pragma once
// A form test's services: the INI store in the test's own home, the doubles of the rest.

#include <QDir>

#include "app/settings/ini_settings_store.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "support/fake_serial_line.h"
#include "support/scripted_boxes.h"
#include "support/scripted_dialogs.h"
#include "support/stepping_clock.h"

namespace kyt::test {

struct TestServices {
    IniSettingsStore* settings;
    FakeSerialLine* serial;
    ScriptedMessageBoxes* boxes;
    ScriptedFileDialogs* dialogs;
    SteppingClock* clock;
};

// The settings folder of the test home, emptied.
inline QString fresh_settings_folder() {
    const QString folder = IniSettingsStore::default_folder();
    QDir(folder).removeRecursively();
    return folder;
}

inline TestServices install_test_services() {
    Services& s = services();
    s.settings.reset();  // the old store writes what it holds before the folder is emptied
    TestServices t{new IniSettingsStore(fresh_settings_folder()), new FakeSerialLine, new ScriptedMessageBoxes,
                   new ScriptedFileDialogs, new SteppingClock};
    s.settings.reset(t.settings);
    s.serial.reset(t.serial);
    s.boxes.reset(t.boxes);
    s.dialogs.reset(t.dialogs);
    s.clock.reset(t.clock);
    shared() = SharedState{};
    return t;
}

}  // namespace kyt::test
