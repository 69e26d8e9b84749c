#include "app/settings/ini_settings_store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <utility>

#include "common/qt_text.h"

namespace kyt {

namespace {

// A settings file is a few kilobytes.
constexpr qint64 max_settings_file_bytes = 1 << 20;

// The spelling already in use for a name, compared without regard to case.
QString existing_name(const QStringList& names, const QString& wanted) {
    for (const QString& n : names)
        if (n.compare(wanted, Qt::CaseInsensitive) == 0) return n;
    return wanted;
}

// QSettings keeps keys outside any group under "General"; the console always
// names a section, so a plain group is enough here.
struct Place {
    QString group;
    QString key;
};

Place locate(QSettings& s, std::string_view section, std::string_view key) {
    const QString group = existing_name(s.childGroups(), qs(section));
    s.beginGroup(group);
    const QString k = existing_name(s.childKeys(), qs(key));
    s.endGroup();
    return {group, k};
}

}  // namespace

IniSettingsStore::IniSettingsStore(QString folder) : folder_(folder.isEmpty() ? default_folder() : folder) {}

IniSettingsStore::~IniSettingsStore() { flush(); }

std::string IniSettingsStore::flush() {
    std::string why = std::exchange(notice_, {});
    for (auto& [name, settings] : files_) {
        settings->sync();
        if (settings->status() != QSettings::NoError && why.empty())
            why = "The settings file " + ss(QDir::toNativeSeparators(name)) + " could not be written.";
    }
    return why;
}

// One QSettings a file, kept: QSettings writes its changes back once per turn
// of the event loop, so a form that saves many keys costs one write.
QSettings& IniSettingsStore::file(std::string_view app) {
    const QString name = file_for(app);
    auto& slot = files_[name];
    if (!slot) {
        QDir().mkpath(folder_);
        const bool too_large = QFileInfo(name).size() > max_settings_file_bytes;
        if (!too_large) slot = std::make_unique<QSettings>(name, QSettings::IniFormat);
        if (too_large || unreadable(*slot)) {
            slot.reset();
            keep_damaged(name);
            slot = std::make_unique<QSettings>(name, QSettings::IniFormat);
        }
    }
    return *slot;
}

// QSettings makes out a section only when it is asked for a key.
bool IniSettingsStore::unreadable(const QSettings& settings) {
    settings.allKeys();
    return settings.status() == QSettings::FormatError;
}

// QSettings reads a file whole, and on its next write drops, without a word,
// whatever it could not make out. So a file it cannot read, or one far too
// large to be settings, takes another name before anything is read from it
// for good or written over it. A file that cannot be opened at all stays:
// QSettings writes nothing over it, and flush tells.
void IniSettingsStore::keep_damaged(const QString& name) {
    const QString kept = name + ".damaged";
    if ((QFile::exists(kept) && !QFile::remove(kept)) || !QFile::rename(name, kept)) return;
    notice_ = "The settings file " + ss(QDir::toNativeSeparators(name)) + " could not be read; it was kept as " +
              ss(QDir::toNativeSeparators(kept)) + ", and the console starts from its defaults.";
}

QString IniSettingsStore::default_folder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/kyt-console";
}

QString IniSettingsStore::file_for(std::string_view app) const {
    return folder_ + "/" + qs(app).toLower() + ".ini";
}

std::string IniSettingsStore::get_setting(std::string_view app, std::string_view section, std::string_view key,
                                          std::string_view default_value) {
    QSettings& s = file(app);
    const Place p = locate(s, section, key);
    const QVariant v = s.value(p.group + "/" + p.key);
    if (!v.isValid()) return std::string(default_value);
    // A hand-edited value with unquoted commas reads back as a list.
    if (v.typeId() == QMetaType::QStringList) return v.toStringList().join(",").toLatin1().toStdString();
    return v.toString().toLatin1().toStdString();
}

void IniSettingsStore::save_setting(std::string_view app, std::string_view section, std::string_view key,
                                    std::string_view value) {
    QSettings& s = file(app);
    const Place p = locate(s, section, key);
    s.setValue(p.group + "/" + p.key, qs(value));
}

void IniSettingsStore::delete_setting(std::string_view app, std::string_view section, std::string_view key) {
    QSettings& s = file(app);
    const Place p = locate(s, section, key);
    s.remove(p.group + "/" + p.key);
}

}  // namespace kyt
