#pragma once
// The question before a report is stored under a name that exists already:
// overwrite it, append to it, or cancel. Each button records the answer in
// file_action and file_confirmed and closes the dialog. The Save dialog's
// own overwrite prompt guards the console's files, so no step of the
// console puts this dialog up; it stays loadable for one that wants it.

#include <QDialog>

namespace Ui {
class frmFileExists;
}

class frmFileExists : public QDialog {
    Q_OBJECT
public:
    explicit frmFileExists(QWidget* parent = nullptr);
    ~frmFileExists() override;

    void cmdOverwrite_Click();
    void cmdAppend_Click();
    void cmdCancel_Click();

private:
    Ui::frmFileExists* ui;
};
