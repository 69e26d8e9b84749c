#include "admin/frmSysAd.h"

#include <QEvent>
#include <QLineEdit>

#include <limits>

#include "admin/frmChgPassword.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "ui_frmSysAd.h"

using namespace kyt;

namespace {

StorePlace lists_place() { return {*services().settings, kApp, kStartup}; }

}  // namespace

frmSysAd::frmSysAd(QWidget* parent)
    : QDialog(parent),
      ui(new Ui::frmSysAd),
      cmbSysAdData{},
      chkMandatory{} {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    QGroupBox* const frames[kListCount] = {ui->fraManufacturers, ui->fraVTBI,       ui->fraTechnicians,
                                           ui->fraModels,        ui->fraFlowRates,  ui->fraLocations,
                                           ui->fraDepartments,   ui->fraPumpTypes,  ui->fraTolerances};
    for (int i = 0; i < kListCount; ++i) {
        frames[i]->setTitle(qs(kAdminLists[static_cast<std::size_t>(i)].caption));
        cmbSysAdData[i] = findChild<QComboBox*>(QString("cmbSysAdData_%1").arg(i));
        cmbSysAdData[i]->installEventFilter(this);
        // What is typed is what is added: no completion from the list.
        cmbSysAdData[i]->setCompleter(nullptr);
        // The box also makes an element current when the text typed matches it
        // and the focus leaves; typing is not picking, so that is no selection.
        connect(cmbSysAdData[i], &QComboBox::activated, this,
                [this, i] { picked_[i] = !cmbSysAdData[i]->lineEdit()->isModified(); });
        connect(cmbSysAdData[i]->lineEdit(), &QLineEdit::textEdited, this, [this, i] { picked_[i] = false; });
    }
    for (int i = 0; i < kMandatoryCount; ++i) {
        chkMandatory[i] = findChild<QCheckBox*>(QString("chkMandatory_%1").arg(i));
        connect(chkMandatory[i], &QCheckBox::toggled, this, [this, i] { chkMandatory_Click(i); });
    }
    connect(ui->cmdAdd, &QPushButton::clicked, this, &frmSysAd::cmdAdd_Click);
    connect(ui->cmdRemove, &QPushButton::clicked, this, &frmSysAd::cmdRemove_Click);
    connect(ui->cmdClear, &QPushButton::clicked, this, &frmSysAd::cmdClear_Click);
    connect(ui->cmdSetPassword, &QPushButton::clicked, this, &frmSysAd::cmdSetPassword_Click);
    connect(ui->cmdRemovePassword, &QPushButton::clicked, this, &frmSysAd::cmdRemovePassword_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &frmSysAd::cmdClose_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmSysAd::cmdCancel_Click);
    load_sys_admin();
    adjustSize();
    center_form(this);
}

frmSysAd::~frmSysAd() { delete ui; }

void frmSysAd::show_form() {
    frmSysAd* f = forms::get<frmSysAd>();
    f->show();
    f->raise();
    f->activateWindow();
}

bool frmSysAd::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn)
        for (int i = 0; i < kListCount; ++i)
            if (watched == cmbSysAdData[i]) current_list = i;
    return QDialog::eventFilter(watched, event);
}

void frmSysAd::load_sys_admin() {
    const AdminLists stored = load_admin_lists(lists_place());
    list_count = stored.list_count;
    loaded_count = list_count;
    SharedState& s = shared();
    for (int i = 0; i < kMandatoryCount; ++i) {
        if (i < kListCount) {
            QComboBox* box = cmbSysAdData[i];
            for (const std::string& text : stored.lists[static_cast<std::size_t>(i)]) box->addItem(qs(text));
            // Nothing is picked at the start: the box shows no element.
            box->setCurrentIndex(-1);
        }
        s.mandatory[static_cast<std::size_t>(i)] = stored.mandatory[static_cast<std::size_t>(i)];
        chkMandatory[i]->setChecked(stored.mandatory[static_cast<std::size_t>(i)]);
    }
    show_password_state();
    for (std::string_view key : stored.unreadable_counts)
        msg_box(unreadable_count_message(key), box_critical, "ERROR");
}

void frmSysAd::save_sys_admin() {
    SharedState& s = shared();
    AdminLists lists;
    lists.list_count = list_count;
    for (int i = 0; i < kListCount; ++i)
        for (int n = 0; n < cmbSysAdData[i]->count(); ++n)
            lists.lists[static_cast<std::size_t>(i)].push_back(ss(cmbSysAdData[i]->itemText(n)));
    for (int i = 0; i < kMandatoryCount; ++i) {
        s.mandatory[static_cast<std::size_t>(i)] = chkMandatory[i]->checkState() == Qt::Checked;
        lists.mandatory[static_cast<std::size_t>(i)] = s.mandatory[static_cast<std::size_t>(i)];
    }
    save_admin_lists(lists_place(), lists, loaded_count, s.password);
    save_settings_now();
}

void frmSysAd::show_password_state() {
    const bool required = shared().password_required;
    ui->cmdSetPassword->setText(required ? "Change Password" : "Set Password");
    ui->cmdRemovePassword->setEnabled(required);
}

bool frmSysAd::has_selection() const {
    const QComboBox* box = cmbSysAdData[current_list];
    return picked_[current_list] && box->currentIndex() >= 0 &&
           box->currentText() == box->itemText(box->currentIndex());
}

void frmSysAd::forget_selection(QComboBox* box) {
    picked_[current_list] = false;
    box->setCurrentIndex(-1);
}

void frmSysAd::cmdAdd_Click() {
    QComboBox* box = cmbSysAdData[current_list];
    const std::string text = ss(box->currentText());
    if (!is_numeric(text) && kAdminLists[static_cast<std::size_t>(current_list)].numeric_only) {
        msg_box("Invalid entry, entry must be numeric.", box_critical, "ERROR");
    } else if (count_of(current_list) == std::numeric_limits<std::int16_t>::max()) {
        msg_box("The list is full: it holds " + std::to_string(count_of(current_list)) + " entries.", box_critical,
                "ERROR");
    } else {
        box->addItem(qs(text));
        forget_selection(box);
        box->clearEditText();
        ++count_of(current_list);
    }
    box->setFocus();
}

void frmSysAd::cmdRemove_Click() {
    QComboBox* box = cmbSysAdData[current_list];
    if (has_selection()) {
        box->removeItem(box->currentIndex());
        forget_selection(box);
        if (count_of(current_list) > 0) --count_of(current_list);
    }
    box->setFocus();
}

void frmSysAd::cmdClear_Click() {
    QComboBox* box = cmbSysAdData[current_list];
    count_of(current_list) = 0;
    picked_[current_list] = false;
    box->clear();
    box->clearEditText();
    box->setFocus();
}

void frmSysAd::chkMandatory_Click(int index) {
    shared().mandatory[static_cast<std::size_t>(index)] = chkMandatory[index]->checkState() == Qt::Checked;
}

void frmSysAd::cmdSetPassword_Click() {
    save_sys_admin();
    forms::unload<frmSysAd>();
    forms::get<frmChgPassword>()->exec();
}

void frmSysAd::cmdRemovePassword_Click() {
    shared().password_required = false;
    services().settings->save_setting(kApp, "startup", kPasswordRequiredKey, "False");
    save_settings_now();
    show_password_state();
}

void frmSysAd::cmdClose_Click() {
    save_sys_admin();
    forms::unload<frmSysAd>();
}

void frmSysAd::cmdCancel_Click() { forms::unload<frmSysAd>(); }
