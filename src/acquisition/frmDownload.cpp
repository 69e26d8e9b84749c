#include "acquisition/frmDownload.h"

#include <QPointer>

#include <initializer_list>

#include "app/frmMain.h"
#include "common/box_message.h"
#include "common/form_roles.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/numbers.h"
#include "common/qt_text.h"
#include "common/shared_state.h"
#include "ui_frmDownload.h"

using namespace kyt;

namespace {
void set_enabled(std::initializer_list<QWidget*> widgets, bool on) {
    for (QWidget* w : widgets) w->setEnabled(on);
}
}  // namespace

frmDownload::frmDownload(QWidget* parent) : QDialog(parent), ui(new Ui::frmDownload) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);

    // Each mode option's rule runs when it comes on; the other rules follow
    // their control's state, whoever changes it.
    connect(ui->optRealTime, &QRadioButton::toggled, this, [this](bool on) {
        if (on) optRealTime_Click();
    });
    for (QRadioButton* capture : {ui->optGetLog, ui->optGetSummary, ui->optReceiveAny})
        connect(capture, &QRadioButton::toggled, this, [this](bool on) {
            if (on) disable_realtime_criteria();
        });
    connect(ui->chkSingle, &QCheckBox::toggled, this, &frmDownload::chkSingle_Click);
    connect(ui->chkOccl, &QCheckBox::toggled, this, &frmDownload::chkOccl_Click);
    connect(ui->chkReport, &QCheckBox::toggled, this, &frmDownload::chkReport_Click);
    connect(ui->optDuration, &QRadioButton::toggled, this, &frmDownload::optDuration_Click);
    connect(ui->optIndefinite, &QRadioButton::toggled, this, &frmDownload::optIndefinite_Click);
    connect(ui->CmdOK, &QPushButton::clicked, this, &frmDownload::CmdOK_Click);
    connect(this, &frmDownload::options_accepted, this, &frmDownload::evaluate_download_options);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmDownload::cmdCancel_Click);

    adjustSize();
    center_form(this);
    shared().run.summary_header_open = false;
    ui->chkSaveFile->setChecked(true);
    ui->chkSingle->setChecked(false);
    ui->chkOccl->setChecked(false);
    ui->cmbPoll->setCurrentIndex(0);
    ui->cmbDuration->setCurrentIndex(0);
    ui->cmbOccl->setCurrentIndex(0);
    disable_realtime_criteria();
    // A live test needs its screens; a build without them offers no
    // real-time mode rather than start a test that nothing would follow.
    ui->optRealTime->setEnabled(forms::has_factory("frmRTGraph") && forms::has_factory("frmOTGraph"));
}

frmDownload::~frmDownload() { delete ui; }

DownloadChoice frmDownload::choice() const {
    DownloadChoice c;
    if (ui->optReceiveAny->isChecked()) c.download_mode = '4';
    if (ui->optGetSummary->isChecked()) c.download_mode = '1';
    if (ui->optGetLog->isChecked()) c.download_mode = '2';
    if (ui->optRealTime->isChecked()) c.download_mode = '3';
    const QRadioButton* const channels[] = {ui->optChannelA, ui->optChannelB, ui->optChannelC, ui->optChannelD};
    for (int i = 0; i < 4; ++i)
        if (channels[i]->isChecked()) c.channel = static_cast<char>('A' + i);
    c.save_to_file = ui->chkSaveFile->isChecked();
    c.single_rate = ui->chkSingle->isChecked();
    c.occlusion = ui->chkOccl->isChecked();
    c.run_indefinitely = !ui->optDuration->isChecked();
    c.duration_minutes = ss(ui->cmbDuration->currentText());
    c.poll_seconds = static_cast<int>(leading_number(ss(ui->cmbPoll->currentText())));
    c.occlusion_minutes = ss(ui->cmbOccl->currentText());
    // The graph takes the first unit that is on, in this order.
    if (ui->optmmHg->isChecked()) c.occlusion_unit = OcclusionUnit::mmhg;
    else if (ui->optPSI->isChecked()) c.occlusion_unit = OcclusionUnit::psi;
    else if (ui->optkPa->isChecked()) c.occlusion_unit = OcclusionUnit::kpa;
    c.report_output = ui->chkReport->isChecked();
    c.summary_to_printer = ui->optPrinter->isChecked();
    c.summary_to_file = ui->optFile->isChecked();
    c.start_automatically = ui->chkTestAuto->isChecked();
    return c;
}

void frmDownload::disable_single_options() {
    set_enabled({ui->optIndefinite, ui->optDuration, ui->cmbDuration, ui->lblTestLengthUnits}, false);
}

void frmDownload::enable_single_options() {
    ui->optIndefinite->setEnabled(true);
    ui->optDuration->setEnabled(true);
    // Turning "Run Indefinitely" on turns "Stop Test After" off; the length
    // list stays disabled until "Stop Test After" is chosen.
    ui->optIndefinite->setChecked(true);
    enable_test_options();
}

void frmDownload::disable_occl_options() {
    set_enabled({ui->lblOccl, ui->cmbOccl, ui->lblOcclUnits, ui->fraOcclGraphUnits, ui->optPSI, ui->optmmHg,
                 ui->optkPa},
                false);
}

void frmDownload::enable_occl_options() {
    set_enabled({ui->lblOccl, ui->cmbOccl, ui->lblOcclUnits, ui->fraOcclGraphUnits, ui->optPSI, ui->optmmHg,
                 ui->optkPa},
                true);
    ui->optPSI->setChecked(true);
    enable_test_options();
}

void frmDownload::enable_test_options() {
    set_enabled({ui->fraReport, ui->chkReport, ui->lblPoll, ui->cmbPoll, ui->lblunits, ui->chkTestAuto}, true);
}

void frmDownload::disable_test_options() {
    set_enabled({ui->fraReport, ui->chkReport}, false);
    ui->chkReport->setChecked(false);
    // The summary options keep whichever of them is on.
    set_enabled({ui->optPrinter, ui->optFile, ui->lblPoll, ui->cmbPoll, ui->lblunits, ui->chkTestAuto}, false);
}

void frmDownload::enable_realtime_criteria() {
    set_enabled({ui->fraRealTime, ui->fraSingle, ui->chkSingle, ui->fraOccl, ui->chkOccl}, true);
}

void frmDownload::disable_realtime_criteria() {
    disable_single_options();
    disable_occl_options();
    set_enabled({ui->fraRealTime, ui->fraSingle, ui->chkSingle, ui->fraOccl, ui->chkOccl}, false);
    disable_occl_options();
    disable_test_options();
}

void frmDownload::optRealTime_Click() {
    enable_realtime_criteria();
    ui->chkSingle->setChecked(false);
    ui->chkOccl->setChecked(false);
}

void frmDownload::chkSingle_Click() {
    if (ui->chkSingle->isChecked()) {
        enable_single_options();
        return;
    }
    disable_single_options();
    if (!ui->chkOccl->isChecked()) disable_test_options();
}

void frmDownload::chkOccl_Click() {
    if (ui->chkOccl->isChecked()) {
        enable_occl_options();
        return;
    }
    disable_occl_options();
    if (!ui->chkSingle->isChecked()) disable_test_options();
}

void frmDownload::chkReport_Click() {
    const bool on = ui->chkReport->isChecked();
    ui->optPrinter->setEnabled(on);
    ui->optFile->setEnabled(on);
    if (on) ui->optFile->setChecked(true);
}

void frmDownload::optDuration_Click() {
    if (!ui->optDuration->isChecked()) return;
    ui->cmbDuration->setEnabled(true);
    ui->lblTestLengthUnits->setEnabled(true);
}

void frmDownload::optIndefinite_Click() {
    if (!ui->optIndefinite->isChecked()) return;
    ui->cmbDuration->setEnabled(false);
    ui->lblTestLengthUnits->setEnabled(false);
}

void frmDownload::get_download_options() {
    RunState& run = shared().run;
    // Each option that is on stores its mode; the flags are only ever set.
    if (ui->optReceiveAny->isChecked()) {
        run.download_mode = '4';
        mode_chosen = true;
    }
    if (ui->optGetSummary->isChecked()) {
        run.download_mode = '1';
        mode_chosen = true;
    }
    if (ui->optGetLog->isChecked()) {
        run.download_mode = '2';
        mode_chosen = true;
    }
    if (ui->optRealTime->isChecked()) {
        run.download_mode = '3';
        mode_chosen = true;
    }
    if (run.download_mode == '3') {
        if (ui->chkSingle->isChecked() && !ui->cmbPoll->currentText().isEmpty()) criteria_complete = true;
        else if (ui->chkOccl->isChecked()) criteria_complete = true;
    }
    const QRadioButton* const channels[] = {ui->optChannelA, ui->optChannelB, ui->optChannelC, ui->optChannelD};
    for (int i = 0; i < 4; ++i)
        if (channels[i]->isChecked()) {
            shared().port.channel = static_cast<char>('A' + i);
            channel_chosen = true;
        }
}

namespace {

// A download or a live test is under way: the dialog holds its choice.
bool run_under_way() {
    const RunState& r = shared().run;
    return r.report_pending || r.rt_pending || r.ot_pending || r.rt_running || r.ot_running || r.rt_sum_running ||
           r.ot_sum_running;
}

}  // namespace

void frmDownload::CmdOK_Click() {
    if (run_under_way()) {
        // A second run would take over the first one's files and timers.
        msg_box("A download or a test is still running. Stop it before you start another.", box_exclamation,
                "DOWNLOAD");
        hide();
        return;
    }
    get_download_options();
    if (!mode_chosen || !channel_chosen) {
        // A report on screen loses its Print entry until it is shown anew.
        if (auto* report = dynamic_cast<ReportScreen*>(forms::find("frmReports"))) report->disable_print();
        msg_box("You must select a Channel or a Mode type.", box_critical, "ERROR");
        return;
    }
    if (shared().run.download_mode == '3' && !criteria_complete) {
        msg_box("You must complete the Real Time criteria.", box_critical, "ERROR");
        return;
    }
    // The handler may show modal dialogs and unload this form on the way.
    const QPointer<frmDownload> self(this);
    emit options_accepted();
    if (!self || !shared().run.download_ok) return;
    shared().run.summary_header_open = true;
    hide();
    // The main window opens the capture or test screen at its activation,
    // also where no window manager hands the activation over.
    if (frmMain* m = forms::loaded<frmMain>()) {
        m->activateWindow();
        m->Form_Activate();
    }
}

bool frmDownload::ui_save_to_file() const { return ui->chkSaveFile->isChecked(); }

void frmDownload::cmdCancel_Click() {
    // The run under way reads its choice from this form: it stays loaded.
    if (run_under_way()) hide();
    else forms::unload<frmDownload>();
}
