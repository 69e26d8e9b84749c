#pragma once
// A settings store held in memory, for tests that must not touch a file.

#include <map>
#include <string>
#include <string_view>
#include <tuple>

#include "app/settings/settings_store.h"

namespace kyt {

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

}  // namespace kyt
