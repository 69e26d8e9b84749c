#include "support/memory_settings_store.h"

#include "common/text.h"

namespace kyt {

MemorySettingsStore::Key MemorySettingsStore::make_key(std::string_view app, std::string_view section,
                                                       std::string_view key) {
    return {upper(app), upper(section), upper(key)};
}

std::string MemorySettingsStore::get_setting(std::string_view app, std::string_view section,
                                             std::string_view key, std::string_view default_value) {
    const auto it = values_.find(make_key(app, section, key));
    return it == values_.end() ? std::string(default_value) : it->second;
}

void MemorySettingsStore::save_setting(std::string_view app, std::string_view section, std::string_view key,
                                       std::string_view value) {
    values_[make_key(app, section, key)] = std::string(value);
}

void MemorySettingsStore::delete_setting(std::string_view app, std::string_view section, std::string_view key) {
    values_.erase(make_key(app, section, key));
}

bool MemorySettingsStore::contains(std::string_view app, std::string_view section, std::string_view key) const {
    return values_.count(make_key(app, section, key)) != 0;
}

}  // namespace kyt
