#include "acquisition/frmHeader.h"

#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

#include "common/field_events.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "ui_frmHeader.h"

using namespace kyt;

frmHeader::frmHeader(QWidget* parent)
    : QDialog(parent), ui(new Ui::frmHeader), events(new FieldEvents(this)), cmbHdr{}, labels{} {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    QLabel* const by_field[kHeaderFieldCount] = {
        ui->lblManufacturer, ui->lblVTBI,       ui->lblTechnician, ui->lblModel,  ui->lblFlowRate, ui->lblLocation,
        ui->lblDepartment,   ui->lblPumpType,   ui->lblTolerance,  ui->lblSerial, ui->lblControlNo,
    };
    std::copy(std::begin(by_field), std::end(by_field), labels);
    for (int i = 0; i < kListCount; ++i) {
        cmbHdr[i] = findChild<QComboBox*>(QString("cmbHdr_%1").arg(i));
        // The field holds what is typed: no completion from the list.
        cmbHdr[i]->setCompleter(nullptr);
    }
    for (int field = 0; field < kHeaderFieldCount; ++field) events->watch(control(field), field);
    events->on_enter = events->on_leave = [this](int field) { return field_entered(field); };
    connect(ui->cmdContinue, &QPushButton::clicked, this, &frmHeader::cmdContinue_Click);
    adjustSize();
    center_form(this);
}

frmHeader::~frmHeader() { delete ui; }

void frmHeader::show_mandatory_legend() { ui->lblMandatoryFields->setVisible(true); }

QWidget* frmHeader::control(int field) const {
    if (field == kSerialField) return ui->txtSerialNo;
    if (field == kControlField) return ui->txtControlNo;
    return cmbHdr[field];
}

std::string frmHeader::text_of(int field) const {
    if (field == kSerialField) return ss(ui->txtSerialNo->text());
    if (field == kControlField) return ss(ui->txtControlNo->text());
    return ss(cmbHdr[field]->currentText());
}

HeaderEntries frmHeader::entries() const {
    HeaderEntries e;
    for (int field = 0; field < kHeaderFieldCount; ++field) e.field[static_cast<std::size_t>(field)] = text_of(field);
    e.comment = ss(ui->txtComment->text());
    return e;
}

bool frmHeader::event(QEvent* e) {
    // A modal dialog is activated once per opening: the first showing.
    if (e->type() == QEvent::Show && !e->spontaneous() && !activated) {
        activated = true;
        Form_Activate();
    }
    return QDialog::event(e);
}

void frmHeader::Form_Activate() {
    SharedState& s = shared();
    const HeaderChoices choices = read_header_choices({*services().settings, "KYT", "STARTUP"},
                                                      s.run.header_is_single_rate);
    for (int i = 0; i < kListCount; ++i) {
        for (const std::string& text : choices.lists[static_cast<std::size_t>(i)]) cmbHdr[i]->addItem(qs(text));
        // Filling a list picks nothing: the boxes start empty.
        cmbHdr[i]->setCurrentIndex(-1);
    }
    s.mandatory = choices.mandatory;
    prepare_identifying_fields();
    for (int field = 0; field < kHeaderFieldCount; ++field) {
        const bool required = s.mandatory[static_cast<std::size_t>(field)] && control(field)->isEnabled();
        QFont font = labels[field]->font();
        font.setBold(required);
        labels[field]->setFont(font);
        field_filled[static_cast<std::size_t>(field)] = !required;
    }
    for (std::string_view key : choices.unreadable_counts)
        msg_box(unreadable_count_message(key), box_critical, "ERROR");
}

void frmHeader::prepare_identifying_fields() {
    const bool appended = shared().run.file_appended;
    const QString text = appended ? "disabled" : "";
    for (int field : kIdentifyingFields) {
        QWidget* w = control(field);
        if (auto* box = qobject_cast<QComboBox*>(w)) box->setEditText(text);
        else static_cast<QLineEdit*>(w)->setText(text);
        w->setEnabled(!appended);
    }
}

bool frmHeader::field_entered(int field) {
    SharedState& s = shared();
    const EntryOutcome r = check_entry(field, text_of(field), s.mandatory[static_cast<std::size_t>(field)]);
    if (r.not_numeric) msg_box("Invalid entry, entry must be numeric.", box_critical, "ERROR");
    if (r.filled) field_filled[static_cast<std::size_t>(field)] = *r.filled;
    if (r.not_numeric) events->return_focus(control(field));
    if (r.set_rate) {
        ui->cmdContinue->setEnabled(true);
        s.report_set_rate = *r.set_rate;
    }
    if (std::all_of(field_filled.begin(), field_filled.end(), [](bool f) { return f; }))
        ui->cmdContinue->setEnabled(true);
    return !r.not_numeric;
}

bool frmHeader::verifyMandatoryFields() {
    const auto unfit = first_unfit_field(entries(), shared().mandatory);
    if (!unfit) return true;
    control(*unfit)->setFocus();
    return false;
}

void frmHeader::load_report_rec() { kyt::load_report_rec(shared().report_rec, entries()); }

void frmHeader::cmdContinue_Click() {
    // A field left for this button is checked before the button acts.
    if (!events->settle()) return;
    if (!verifyMandatoryFields()) {
        msg_box("One or more mandatory fields are empty.\r\nPlease fill in all mandatory fields.", box_exclamation,
                "Mandatory Field Error");
        return;
    }
    if (serial_required && ui->txtSerialNo->text().isEmpty()) {
        msg_box("Serial number required,\r\nplease retry.", box_exclamation, "Confirmation Error");
        return;
    }
    if (control_required && ui->txtControlNo->text().isEmpty()) {
        msg_box("Control number required,\r\nplease retry.", box_exclamation, "Confirmation Error");
        return;
    }
    load_report_rec();
    take_untrimmed_fields(shared().report_rec, entries());
    shared().run.header_entered = true;
    forms::unload<frmHeader>();
}

void frmHeader::cancel_header_save() {
    shared().run.summary_header_open = false;
    msg_box("Saving file cancelled.", box_exclamation, "CANCEL");
    forms::unload<frmHeader>();
}
