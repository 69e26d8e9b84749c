#include "trumpet/frmSetRate.h"

#include <QKeyEvent>

#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/numbers.h"
#include "common/qt_text.h"
#include "common/shared_state.h"
#include "graph/log_reader.h"
#include "ui_frmSetRate.h"

using namespace kyt;

frmSetRate::frmSetRate(QWidget* parent) : QDialog(parent), ui(new Ui::frmSetRate) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->cmdUpdate, &QPushButton::clicked, this, &frmSetRate::update_rate);
    connect(ui->cmdCancel, &QPushButton::clicked, this, [] { forms::unload<frmSetRate>(); });
    ui->txtSetRate->installEventFilter(this);
    center_form(this);
}

frmSetRate::~frmSetRate() { delete ui; }

void frmSetRate::showEvent(QShowEvent* e) {
    QDialog::showEvent(e);
    ui->txtSetRate->clear();
    ui->txtSetRate->setFocus();
    shared().rate_changed = false;
}

bool frmSetRate::eventFilter(QObject* watched, QEvent* e) {
    // Enter in the rate field moves to Update and takes the rate.
    if (watched == ui->txtSetRate && e->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(e)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            ui->cmdUpdate->setFocus();
            update_rate();
            return true;
        }
    }
    return QDialog::eventFilter(watched, e);
}

void frmSetRate::update_rate() {
    const std::string text = ss(ui->txtSetRate->text());
    const std::optional<double> value = numeric_value(text);
    if (text.empty() || !value) {
        msg_box("Non-numeric value", box_critical, "ERROR");
        return;
    }
    SharedState& s = shared();
    if (*value != 0) {
        s.entered_rate = *value;
        graph_series().base_rate = *value;
        s.rate_changed = true;
    } else {
        msg_box("Zero value not possible.", box_critical, "ERROR");
    }
    forms::unload<frmSetRate>();
}
