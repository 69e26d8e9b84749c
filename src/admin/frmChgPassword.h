#pragma once
// Sets or changes the administrator's password: typed twice, in plain text.
// OK turns the gate on at once; the password itself reaches the store when
// the administrator's form is next closed.

#include <QDialog>

#include <string>

namespace Ui {
class frmChgPassword;
}
namespace kyt {
class FieldEvents;
}

class frmChgPassword : public QDialog {
    Q_OBJECT
public:
    explicit frmChgPassword(QWidget* parent = nullptr);
    ~frmChgPassword() override;

    void CmdOK_Click();
    void cmdCancel_Click();

    std::string new_password;
    std::string confirm_password;
    bool password_confirmed = false;

private:
    enum Field { set_field, confirm_field };
    // Compares the confirmation with the new password; false when they differ.
    bool confirm_entry();
    void back_to_sys_admin();

    Ui::frmChgPassword* ui;
    kyt::FieldEvents* events;
};
