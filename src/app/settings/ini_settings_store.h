#pragma once
// The settings store on disk: one INI file per application name in the
// per-user configuration folder (kyt-console/kyt.ini under it). Sections and
// keys are found without regard to case and keep the spelling they were first
// written with. A file that cannot be read as settings is kept aside under
// the name with ".damaged" added, and the console starts from its defaults.

#include <QSettings>
#include <QString>
#include <map>
#include <memory>

#include "app/settings/settings_store.h"

namespace kyt {

class IniSettingsStore final : public SettingsStore {
public:
    // folder: where the INI files lie; empty for the per-user default.
    explicit IniSettingsStore(QString folder = {});
    ~IniSettingsStore() override;

    std::string get_setting(std::string_view app, std::string_view section, std::string_view key,
                            std::string_view default_value = {}) override;
    void save_setting(std::string_view app, std::string_view section, std::string_view key,
                      std::string_view value) override;
    void delete_setting(std::string_view app, std::string_view section, std::string_view key) override;

    QString file_for(std::string_view app) const;
    static QString default_folder();

    // Writes what is pending to disk now. Without it the file follows at the
    // next turn of the event loop, once for a whole batch of writes. Tells,
    // once, of a damaged file kept aside.
    std::string flush() override;

private:
    QSettings& file(std::string_view app);
    static bool unreadable(const QSettings& settings);
    void keep_damaged(const QString& name);
    QString folder_;
    std::string notice_;
    std::map<QString, std::unique_ptr<QSettings>> files_;
};

}  // namespace kyt
