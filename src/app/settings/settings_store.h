#pragma once
// The per-user settings store: texts addressed by application, section and
// key, all three compared without regard to case ("kyt", "KYT"; "Startup",
// "STARTUP", "startup" are one place). Reading takes a default for an absent
// key.

#include <string>
#include <string_view>

namespace kyt {

class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual std::string get_setting(std::string_view app, std::string_view section, std::string_view key,
                                    std::string_view default_value = {}) = 0;
    virtual void save_setting(std::string_view app, std::string_view section, std::string_view key,
                              std::string_view value) = 0;
    virtual void delete_setting(std::string_view app, std::string_view section, std::string_view key) = 0;
    // Writes what is pending; why it could not, or an empty text.
    virtual std::string flush() { return {}; }
};

// The application and section names that the console's own keys live under.
inline constexpr std::string_view kApp = "kyt";
inline constexpr std::string_view kStartup = "Startup";

}  // namespace kyt
