#include "app/dialogs/file_dialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

#include "common/qt_text.h"

namespace kyt {

CommonDialog& common_dialog() {
    static CommonDialog d;
    return d;
}

QStringList qt_name_filters(const std::string& filter) {
    const QStringList parts = qs(filter).split('|');
    QStringList out;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString pattern = parts[i + 1].trimmed();
        pattern.replace("*.*", "*");
        QString name = parts[i].trimmed();
        name.remove(QRegularExpression("\\s*\\([^)]*\\)\\s*$"));
        out << name + " (" + pattern + ")";
    }
    return out;
}

namespace {

// The extension a filter entry stands for ("log" for "Log Files (*.log)"),
// empty for "all files".
QString filter_extension(const QString& name_filter) {
    static const QRegularExpression re("\\(\\*\\.([A-Za-z0-9]+)\\)$");
    const auto m = re.match(name_filter);
    return m.hasMatch() ? m.captured(1) : QString();
}

std::string run_dialog(const CommonDialog& d, bool save) {
    QFileDialog dlg(QApplication::activeWindow(), qs(d.title));
    const QStringList filters = qt_name_filters(d.filter);
    if (!filters.isEmpty()) dlg.setNameFilters(filters);
    const QString dir = qs_file(d.initial_dir);
    if (!dir.isEmpty()) dlg.setDirectory(dir);
    if (!d.file_name.empty()) dlg.selectFile(qs_file(d.file_name));
    if (save) {
        dlg.setAcceptMode(QFileDialog::AcceptSave);
        dlg.setFileMode(QFileDialog::AnyFile);
        if (!(d.flags & dlg_overwrite_prompt)) dlg.setOption(QFileDialog::DontConfirmOverwrite, true);
    } else {
        dlg.setAcceptMode(QFileDialog::AcceptOpen);
        dlg.setFileMode((d.flags & dlg_file_must_exist) ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    }
    // A name typed without an extension takes that of the chosen filter, or
    // the dialog's default extension when the filter is "all files".
    const auto suffix_for = [&](const QString& f) {
        const QString e = filter_extension(f);
        return e.isEmpty() ? qs(d.default_ext).toLower() : e;
    };
    dlg.setDefaultSuffix(suffix_for(filters.value(0)));
    QObject::connect(&dlg, &QFileDialog::filterSelected,
                     [&](const QString& f) { dlg.setDefaultSuffix(suffix_for(f)); });
    for (;;) {
        if (dlg.exec() != QDialog::Accepted || dlg.selectedFiles().isEmpty()) return {};
        const QString name = dlg.selectedFiles().constFirst();
        if ((d.flags & dlg_path_must_exist) && !QFileInfo(name).dir().exists()) continue;
        if ((d.flags & dlg_file_must_exist) && !QFileInfo::exists(name)) continue;
        return ss_file(QDir::toNativeSeparators(name));
    }
}

}  // namespace

std::string QtFileDialogs::show_open(const CommonDialog& d) { return run_dialog(d, false); }
std::string QtFileDialogs::show_save(const CommonDialog& d) { return run_dialog(d, true); }

}  // namespace kyt
