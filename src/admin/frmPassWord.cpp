#include "admin/frmPassWord.h"

#include "admin/admin_lists.h"
#include "common/field_events.h"
#include "admin/frmSysAd.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "ui_frmPassWord.h"

using namespace kyt;

frmPassWord::frmPassWord(QWidget* parent)
    : QDialog(parent), ui(new Ui::frmPassWord), events(new FieldEvents(this)) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    events->watch(ui->txtPassword, 0);
    events->on_enter = [this](int) {
        txtPassword_Enter();
        return true;
    };
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmPassWord::cmdCancel_Click);
    ui->txtPassword->clear();
    adjustSize();
    center_form(this);
}

frmPassWord::~frmPassWord() { delete ui; }

void frmPassWord::txtPassword_Enter() {
    SharedState& s = shared();
    // The built-in code is only the default of the read: once any password is
    // stored, that one alone opens the gate.
    s.password = services().settings->get_setting(kApp, kStartup, kPasswordKey, kBuiltInPassword);
    if (s.password == ss(ui->txtPassword->text())) {
        forms::unload<frmPassWord>();
        frmSysAd::show_form();
    } else {
        ui->txtPassword->clear();
        msg_box("Incorrect Password Entered,\r\nTry Again.", box_exclamation, "Incorrect Password");
    }
}

void frmPassWord::cmdCancel_Click() { forms::unload<frmPassWord>(); }
