#include "reports/frmFileExists.h"

#include "common/shared_state.h"
#include "ui_frmFileExists.h"

using namespace kyt;

frmFileExists::frmFileExists(QWidget* parent) : QDialog(parent), ui(new Ui::frmFileExists) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->cmdOverwrite, &QPushButton::clicked, this, &frmFileExists::cmdOverwrite_Click);
    connect(ui->cmdAppend, &QPushButton::clicked, this, &frmFileExists::cmdAppend_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmFileExists::cmdCancel_Click);
}

frmFileExists::~frmFileExists() { delete ui; }

void frmFileExists::cmdOverwrite_Click() {
    RunState& run = shared().run;
    run.file_action = 1;
    run.file_confirmed = true;
    run.download_ok = true;
    close();
}

void frmFileExists::cmdAppend_Click() {
    RunState& run = shared().run;
    run.file_action = 0;
    run.file_confirmed = true;
    run.file_appended = true;
    close();
}

void frmFileExists::cmdCancel_Click() {
    RunState& run = shared().run;
    run.file_action = 2;
    run.file_confirmed = false;
    close();
}
