#pragma once
// The test header dialog: the operator describes the device under test
// before a log, a summary or a report is saved. Shown modally; Continue fills
// the program's header record, the close box leaves it as it was.

#include <QDialog>

#include <array>

#include "acquisition/header_rules.h"

namespace Ui {
class frmHeader;
}
namespace kyt {
class FieldEvents;
}
class QComboBox;
class QLabel;
class QLineEdit;

class frmHeader : public QDialog {
    Q_OBJECT
public:
    explicit frmHeader(QWidget* parent = nullptr);
    ~frmHeader() override;

    // Reads the lists and the mandatory flags and prepares the fields; runs
    // once, when the dialog is first shown.
    void Form_Activate();
    // Copies the nine trimmed fields into the header record.
    void load_report_rec();
    // True when every mandatory field is in order; otherwise the focus goes
    // to the first one that is not.
    bool verifyMandatoryFields();
    void cmdContinue_Click();
    // Shows the legend that bold fields are mandatory: a single-rate test
    // must have its set rate.
    void show_mandatory_legend();
    // Cancels the save the header was asked for. No control of the dialog
    // calls it; the close box does not.
    void cancel_header_save();

    std::array<bool, kyt::kHeaderFieldCount> field_filled{};
    // Read by Continue and never set: the checks on them stay unreachable.
    bool serial_required = false;
    bool control_required = false;

protected:
    bool event(QEvent* e) override;

private:
    bool field_entered(int field);
    void prepare_identifying_fields();
    QWidget* control(int field) const;
    std::string text_of(int field) const;
    kyt::HeaderEntries entries() const;

    Ui::frmHeader* ui;
    kyt::FieldEvents* events;
    QComboBox* cmbHdr[kyt::kListCount];
    QLabel* labels[kyt::kHeaderFieldCount];
    bool activated = false;
};
