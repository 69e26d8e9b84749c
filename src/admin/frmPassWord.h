#pragma once
// The password gate in front of the system administrator's form. Enter in
// the box checks the password; there is no OK button and no limit on tries.

#include <QDialog>

namespace Ui {
class frmPassWord;
}
namespace kyt {
class FieldEvents;
}

class frmPassWord : public QDialog {
    Q_OBJECT
public:
    explicit frmPassWord(QWidget* parent = nullptr);
    ~frmPassWord() override;

    // Enter in txtPassword.
    void txtPassword_Enter();
    void cmdCancel_Click();

private:
    Ui::frmPassWord* ui;
    kyt::FieldEvents* events;
};
