#include "link/frmChangePort.h"

#include "app/settings/settings_store.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "link/global_comm.h"
#include "link/serial_line.h"
#include "ui_frmChangePort.h"

using namespace kyt;

frmChangePort::frmChangePort(QWidget* parent) : QDialog(parent), ui(new Ui::frmChangePort) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    // Each option names the device behind it, so the operator knows what
    // "Comm 2" is on this machine.
    QLabel* const devices[] = {ui->lblDevice1, ui->lblDevice2, ui->lblDevice3, ui->lblDevice4};
    for (int port = 1; port <= 4; ++port) {
        const QString device = qs(services().serial->device_name(port));
        devices[port - 1]->setText(device);
        option(port)->setToolTip(device);
    }
    connect(ui->cmdUpdate, &QPushButton::clicked, this, &frmChangePort::cmdUpdate_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmChangePort::cmdCancel_Click);
    adjustSize();
    center_form(this);
}

frmChangePort::~frmChangePort() { delete ui; }

QRadioButton* frmChangePort::option(int port) const {
    QRadioButton* const options[] = {ui->optComm1, ui->optComm2, ui->optComm3, ui->optComm4};
    return options[port - 1];
}

bool frmChangePort::event(QEvent* e) {
    // The operator's choice is reset when the dialog opens and when it is
    // reached from another window of the console, not when the console
    // comes back from another program.
    if (e->type() == QEvent::Show || (e->type() == QEvent::WindowActivate && !activation_from_outside()))
        setup_comm_option_buttons();
    return QDialog::event(e);
}

void frmChangePort::setup_comm_option_buttons() {
    const PortState& p = shared().port;
    // Radio buttons in one group cannot all be off at once; switching
    // exclusivity off for the reset lets the current port be the only one on.
    for (int port = 1; port <= 4; ++port) option(port)->setAutoExclusive(false);
    for (int port = 1; port <= 4; ++port) option(port)->setChecked(port == p.comm_port);
    for (int port = 1; port <= 4; ++port) {
        option(port)->setAutoExclusive(true);
        option(port)->setEnabled(p.comm_ports_free[port - 1]);
    }
}

void frmChangePort::cmdUpdate_Click() {
    int chosen = 0;
    for (int port = 1; port <= 4; ++port)
        if (option(port)->isChecked()) chosen = port;
    if (chosen == 0) chosen = shared().port.comm_port;
    shared().port.comm_port = chosen;
    update_comm_caption();
    services().settings->save_setting(kApp, kStartup, "comm", std::to_string(chosen));
    save_settings_now();
    close_comm_port();
    open_comm_port();
    forms::unload<frmChangePort>();
}

void frmChangePort::cmdCancel_Click() { forms::unload<frmChangePort>(); }
