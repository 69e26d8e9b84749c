#include "acquisition/frmSummary.h"

#include <cstdio>

#include "acquisition/frmDownload.h"
#include "common/forms.h"
#include "common/shared_state.h"
#include "ui_frmSummary.h"

using namespace kyt;

frmSummary::frmSummary(QWidget* parent) : QWidget(parent, Qt::Window), ui(new Ui::frmSummary) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmSummary::cmdCancel_Click);
}

frmSummary::~frmSummary() { delete ui; }

void frmSummary::cmdCancel_Click() {
    const SharedState& s = shared();
    // The summary file is written in one piece at its end, so nothing is
    // open here; a file left from before goes.
    if (s.run.rt_sum_running) std::remove(s.dirs.rt_sum_file.c_str());
    else if (s.run.ot_sum_running) std::remove(s.dirs.ot_sum_file.c_str());
    if (frmDownload* d = forms::loaded<frmDownload>()) d->beginnextproc();
    forms::unload<frmSummary>();
}
