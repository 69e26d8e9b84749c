#include "link/frmTestPort.h"

#include "common/forms.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "link/global_comm.h"
#include "link/protocol.h"
#include "link/serial_line.h"
#include "ui_frmTestPort.h"

using namespace kyt;

frmTestPort::frmTestPort(QWidget* parent) : QWidget(parent), ui(new Ui::frmTestPort) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    // The label underlines the button's access key as the button does; the
    // key itself belongs to the button, so that Alt+T starts the test.
    ui->Label1->setText(
        underlined_access_key("Press \"&Test Port\" and you should see the following two line in the window below:"));
    // The expected lines stand in blue above what arrives.
    for (QLabel* l : {ui->Label2, ui->Label3}) {
        QPalette p = l->palette();
        p.setColor(QPalette::WindowText, Qt::blue);
        l->setPalette(p);
    }
    GetDataTimer.setObjectName("GetDataTimer");
    GetDataTimer.setParent(this);
    GetDataTimer.setInterval(10);
    connect(&GetDataTimer, &QTimer::timeout, this, &frmTestPort::GetDataTimer_Timer);
    connect(ui->Command1, &QPushButton::clicked, this, &frmTestPort::Command1_Click);
    connect(ui->Command3, &QPushButton::clicked, this, &frmTestPort::Command3_Click);
    Form_Load();
}

frmTestPort::~frmTestPort() { delete ui; }

void frmTestPort::Form_Load() {
    try {
        reset_comm_buffers();
        services().serial->set_input_len(1);
    } catch (const SerialError& e) {
        tell_serial_error(e);
    }
    center_form(this);
    // Reading starts with the form, not only with the button.
    GetDataTimer.start();
}

void frmTestPort::Command1_Click() {
    received_.clear();
    show_received();
    GetDataTimer.start();
    try {
        services().serial->set_rthreshold(1);
        services().serial->output(command_test_pattern());
    } catch (const SerialError& e) {
        GetDataTimer.stop();
        tell_serial_error(e);
    }
}

void frmTestPort::Command3_Click() { forms::unload<frmTestPort>(); }

void frmTestPort::GetDataTimer_Timer() {
    std::string& buffer = shared().port.comm_buffer;
    try {
        buffer = services().serial->input();
    } catch (const SerialError& e) {
        GetDataTimer.stop();
        tell_serial_error(e);
        return;
    }
    if (buffer.empty()) return;
    received_ += buffer;
    show_received();
    if (buffer.find('.') != std::string::npos) GetDataTimer.stop();
}

void frmTestPort::show_received() {
    // The lines arrive ended by CR LF; the box shows each end once, also while
    // the LF of a pair is still on its way.
    QString text = qs(received_);
    text.replace("\r\n", "\n");
    text.replace('\r', '\n');
    ui->txtData->setPlainText(text);
    ui->txtData->moveCursor(QTextCursor::End);
}
