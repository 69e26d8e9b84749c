#pragma once
// The per-user settings store: texts addressed by application, section and
// key, all three compared without regard to case ("kyt", "KYT"; "Startup",
// "STARTUP", "startup" are one place). Reading takes a default for an absent
// key.

#include <map>
#include <string>
#include <string_view>
#include <tuple>

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

// A store held in memory, for tests and for tools that must not touch the
// user's file.
class MemorySettingsStore final : public SettingsStore {
public:
    std::string get_setting(std::string_view app, std::string_view section, std::string_view key,
                            std::string_view default_value = {}) override;
    void save_setting(std::string_view app, std::string_view section, std::string_view key,
                      std::string_view value) override;
    void delete_setting(std::string_view app, std::string_view section, std::string_view key) override;
    bool contains(std::string_view app, std::string_view section, std::string_view key) const;
    std::size_t size() const { return values_.size(); }

private:
    using Key = std::tuple<std::string, std::string, std::string>;
    static Key make_key(std::string_view app, std::string_view section, std::string_view key);
    std::map<Key, std::string> values_;
};

// The application and section names that the console's own keys live under.
inline constexpr std::string_view kApp = "kyt";
inline constexpr std::string_view kStartup = "Startup";

}  // namespace kyt
