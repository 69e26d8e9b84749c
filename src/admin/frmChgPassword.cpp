#include "admin/frmChgPassword.h"

#include "admin/admin_lists.h"
#include "common/field_events.h"
#include "admin/frmSysAd.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "ui_frmChgPassword.h"

using namespace kyt;

frmChgPassword::frmChgPassword(QWidget* parent)
    : QDialog(parent), ui(new Ui::frmChgPassword), events(new FieldEvents(this)) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    events->watch(ui->txtSetPassword, set_field);
    events->watch(ui->txtConfPassw, confirm_field);
    // Any key in the confirmation box undoes an earlier match, until Enter
    // or leaving the box compares again.
    events->on_key = [this](int field) {
        if (field == confirm_field) password_confirmed = false;
    };
    events->on_enter = [this](int field) {
        if (field == confirm_field) return confirm_entry();
        new_password = ss(ui->txtSetPassword->text());
        ui->txtConfPassw->setFocus();
        return true;
    };
    events->on_leave = [this](int field) {
        if (field == confirm_field) return confirm_entry();
        new_password = ss(ui->txtSetPassword->text());
        return true;
    };
    connect(ui->CmdOK, &QPushButton::clicked, this, &frmChgPassword::CmdOK_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmChgPassword::cmdCancel_Click);
    adjustSize();
    center_form(this);
}

frmChgPassword::~frmChgPassword() { delete ui; }

bool frmChgPassword::confirm_entry() {
    confirm_password = ss(ui->txtConfPassw->text());
    if (confirm_password != new_password) {
        ui->txtConfPassw->clear();
        msg_box("Password entered is not confirmed,\r\nplease retry.", box_exclamation, "Confirmation Error");
        return false;
    }
    password_confirmed = true;
    return true;
}

void frmChgPassword::CmdOK_Click() {
    if (!events->settle()) return;
    SharedState& s = shared();
    if (password_confirmed) {
        s.password = new_password;
        if (!s.password_required) {
            s.password_required = true;
            services().settings->save_setting(kApp, "startup", kPasswordRequiredKey, "True");
            save_settings_now();
        }
    }
    back_to_sys_admin();
}

void frmChgPassword::cmdCancel_Click() { back_to_sys_admin(); }

void frmChgPassword::back_to_sys_admin() {
    forms::unload<frmChgPassword>();
    frmSysAd::show_form();
}
