#include "reports/frmInProgress.h"

#include "ui_frmInProgress.h"

frmInProgress::frmInProgress(QWidget* parent) : QDialog(parent), ui(new Ui::frmInProgress) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &QWidget::hide);
}

frmInProgress::~frmInProgress() { delete ui; }
