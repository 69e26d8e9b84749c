#include "trumpet/frmTrumpSet.h"

#include <QSignalBlocker>

#include "common/forms.h"
#include "common/qt_text.h"
#include "common/shared_state.h"
#include "graph/log_reader.h"
#include "trumpet/trumpet_settings.h"
#include "ui_frmTrumpSet.h"

using namespace kyt;

namespace {

void fill(QComboBox* list, const std::vector<std::string>& entries) {
    const QSignalBlocker quiet(list);
    list->clear();
    for (const std::string& e : entries) list->addItem(qs(e));
}

}  // namespace

frmTrumpSet::frmTrumpSet(QWidget* parent) : QDialog(parent), ui(new Ui::frmTrumpSet) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    TrumpetState& t = shared().trumpet;
    connect(ui->Option1, &QRadioButton::toggled, this, [&t](bool on) {
        if (on) t.interpolation_interval = 30;
    });
    connect(ui->Option2, &QRadioButton::toggled, this, [&t](bool on) {
        if (on) t.interpolation_interval = 60;
    });
    connect(ui->DataInt, &QComboBox::currentIndexChanged, this, &frmTrumpSet::DataInt_Click);
    connect(ui->StartTime, &QComboBox::currentIndexChanged, this, &frmTrumpSet::StartTime_Click);
    connect(ui->Default, &QPushButton::clicked, this, &frmTrumpSet::Default_Click);
    connect(ui->CmdOK, &QPushButton::clicked, this, &frmTrumpSet::CmdOK_Click);
    connect(ui->CmdCancel, &QPushButton::clicked, this, &frmTrumpSet::CmdCancel_Click);

    // The load: interval 60, the lists for the log's length, and their
    // first selections. The selections are the dialog's own, so the clicks
    // they raise are let pass, the length list's click clearing the flag.
    adjustSize();
    center_form(this);
    t.interpolation_interval = 60;
    t.trumpet_default_marker = 30;
    t.suppress_click = true;
    const TrumpSetLoad load = trumpset_load(log_minutes());
    fill(ui->StartTime, load.choice.start_entries);
    select(ui->StartTime, load.choice.start_selected);
    t.trumpet_start_time = load.choice.trumpet_start_time;
    fill(ui->DataInt, load.length_entries);
    t.calculation_length = load.choice.calculation_length;
    select(ui->DataInt, load.length_selected);
    t.trumpet_end_time = static_cast<std::int16_t>(t.trumpet_start_time + t.calculation_length);
}

frmTrumpSet::~frmTrumpSet() { delete ui; }

double frmTrumpSet::log_minutes() {
    const LogSeries& s = graph_series();
    const int n = s.graph_last_index;
    return n >= 0 && static_cast<std::size_t>(n) < s.graph_time.size() ? s.graph_time[n] : 0;
}

void frmTrumpSet::select(QComboBox* list, int entry) {
    {
        const QSignalBlocker quiet(list);
        list->setCurrentIndex(entry);
    }
    if (list == ui->DataInt) DataInt_Click();
    else StartTime_Click();
}

void frmTrumpSet::DataInt_Click() {
    TrumpetState& t = shared().trumpet;
    if (t.suppress_click) {
        t.suppress_click = false;
        return;
    }
    // The start list rebuilt for the chosen length; with "All" it holds
    // minute 0 alone and cannot be changed.
    const StartChoice c = choose_length(log_minutes(), ss(ui->DataInt->currentText()));
    t.calculation_length = c.calculation_length;
    ui->StartTime->setEnabled(true);
    fill(ui->StartTime, c.start_entries);
    t.trumpet_start_time = c.trumpet_start_time;
    select(ui->StartTime, c.start_selected);
    ui->StartTime->setEnabled(c.start_enabled);
    t.trumpet_end_time = static_cast<std::int16_t>(t.trumpet_start_time + t.calculation_length);
}

void frmTrumpSet::StartTime_Click() {
    TrumpetState& t = shared().trumpet;
    if (t.suppress_click || ui->StartTime->currentIndex() < 0) return;
    t.trumpet_start_time = static_cast<std::int16_t>(ui->StartTime->currentText().toInt());
}

void frmTrumpSet::Default_Click() {
    if (!default_applies(log_minutes())) return;
    TrumpetState& t = shared().trumpet;
    t.saved_marker = t.trumpet_default_marker;
    t.trumpet_default_marker = 60;
    select(ui->DataInt, default_length_entry);
    select(ui->StartTime, default_start_entry);
}

void frmTrumpSet::CmdOK_Click() {
    TrumpetState& t = shared().trumpet;
    t.trumpet_end_time = static_cast<std::int16_t>(t.calculation_length + t.trumpet_start_time);
    t.saved_marker = t.trumpet_default_marker;
    t.saved_start = t.trumpet_start_time;
    t.saved_end = t.trumpet_end_time;
    t.trumpet_settings_ok = true;
    forms::unload<frmTrumpSet>();
}

void frmTrumpSet::CmdCancel_Click() {
    // The interval chosen stays in force, and whether settings were ever
    // confirmed is left as it was.
    TrumpetState& t = shared().trumpet;
    t.trumpet_default_marker = t.saved_marker;
    t.trumpet_start_time = t.saved_start;
    t.trumpet_end_time = t.saved_end;
    forms::unload<frmTrumpSet>();
}

void frmTrumpSet::reject() { CmdCancel_Click(); }
