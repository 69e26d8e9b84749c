#pragma once
// The platform services the forms reach: settings store, serial line (the
// main window's KYTComm), message boxes, file dialogs (behind CommonDialog1)
// and the clock. main() installs the real ones; tests install their own.

#include <memory>

namespace kyt {

class SettingsStore;
class SerialLine;
class MessageBoxes;
class FileDialogs;
class Clock;
class Printer;

struct Services {
    std::unique_ptr<SettingsStore> settings;
    std::unique_ptr<SerialLine> serial;
    std::unique_ptr<MessageBoxes> boxes;
    std::unique_ptr<FileDialogs> dialogs;
    std::unique_ptr<Clock> clock;
    std::unique_ptr<Printer> printer;
};

Services& services();

// Writes the settings now; when they cannot be written, tells why in one
// box and returns false. Called after a form has stored what the operator
// chose, so that a setting is never lost in silence.
bool save_settings_now();

// The real services: the INI store in the per-user folder, QSerialPort, Qt's
// message boxes and file dialogs, the system clock.
void install_real_services();

}  // namespace kyt
