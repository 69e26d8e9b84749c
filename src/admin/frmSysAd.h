#pragma once
// The system administrator's form: the nine lists the test header offers,
// which header fields are mandatory, and the way to set or remove the
// password that guards this form.

#include <QDialog>

#include "admin/admin_lists.h"

namespace Ui {
class frmSysAd;
}
class QCheckBox;
class QComboBox;

class frmSysAd : public QDialog {
    Q_OBJECT
public:
    explicit frmSysAd(QWidget* parent = nullptr);
    ~frmSysAd() override;

    // Loads the form when it is not loaded yet and shows it without blocking.
    static void show_form();

    // Reads the whole store into the form.
    void load_sys_admin();
    // Writes the whole form into the store, the password included.
    void save_sys_admin();

    void cmdAdd_Click();
    void cmdRemove_Click();
    void cmdClear_Click();
    void cmdSetPassword_Click();
    void cmdRemovePassword_Click();
    void cmdClose_Click();
    void cmdCancel_Click();
    void chkMandatory_Click(int index);

    // The list that last had the focus; the buttons act on it.
    int current_list = 0;
    kyt::ListCounts list_count{};
    kyt::ListCounts loaded_count{};

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show_password_state();
    // An element of the current list counts as selected only when the
    // operator picked it from the list and has not typed since: the combo
    // box itself makes the first element added to an empty list current.
    bool has_selection() const;
    void forget_selection(QComboBox* box);
    std::int16_t& count_of(int list) { return list_count[static_cast<std::size_t>(kyt::count_slot(list))]; }

    Ui::frmSysAd* ui;
    QComboBox* cmbSysAdData[kyt::kListCount];
    QCheckBox* chkMandatory[kyt::kMandatoryCount];
    bool picked_[kyt::kListCount] = {};
};
