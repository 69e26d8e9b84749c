#pragma once
// The settings store on disk: one INI file per application name in the
// per-user configuration folder (kyt-console/kyt.ini under it). Sections and
// keys are found without regard to case and keep the spelling they were first
// written with.

#include <QString>

#include "app/settings/settings_store.h"

namespace kyt {

class IniSettingsStore final : public SettingsStore {
public:
    // folder: where the INI files lie; empty for the per-user default.
    explicit IniSettingsStore(QString folder = {});

    std::string get_setting(std::string_view app, std::string_view section, std::string_view key,
                            std::string_view default_value = {}) override;
    void save_setting(std::string_view app, std::string_view section, std::string_view key,
                      std::string_view value) override;
    void delete_setting(std::string_view app, std::string_view section, std::string_view key) override;

    QString file_for(std::string_view app) const;
    static QString default_folder();

private:
    QString folder_;
};

}  // namespace kyt
