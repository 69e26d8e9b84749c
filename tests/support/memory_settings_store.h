#pragma once

#include <map>
#include <tuple>

#include "app/settings/settings_store.h"
#include "common/text.h"

namespace kyt {

// A settings store in memory, names found without regard to case as in the file.
class MemorySettingsStore final : public SettingsStore {
public:
    std::string get_setting(std::string_view app, std::string_view section, std::string_view key,
                            std::string_view default_value = {}) override {
        const auto it = values_.find(make_key(app, section, key));
        return it == values_.end() ? std::string(default_value) : it->second;
    }
    void save_setting(std::string_view app, std::string_view section, std::string_view key,
                      std::string_view value) override {
        values_[make_key(app, section, key)] = std::string(value);
    }
    void delete_setting(std::string_view app, std::string_view section, std::string_view key) override {
        values_.erase(make_key(app, section, key));
    }

private:
    using Key = std::tuple<std::string, std::string, std::string>;
    static Key make_key(std::string_view app, std::string_view section, std::string_view key) {
        return {upper(app), upper(section), upper(key)};
    }
    std::map<Key, std::string> values_;
};

}  // namespace kyt
