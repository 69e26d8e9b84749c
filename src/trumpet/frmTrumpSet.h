#pragma once
// The trumpet settings: the interpolation interval, the length of the
// analysis and its start, from lists built on the length of the log on show.
// What was confirmed last is kept for the next opening; Cancel goes back to
// it.

#include <QDialog>

class QComboBox;

namespace Ui {
class frmTrumpSet;
}

class frmTrumpSet : public QDialog {
    Q_OBJECT
public:
    explicit frmTrumpSet(QWidget* parent = nullptr);
    ~frmTrumpSet() override;

    void DataInt_Click();
    void StartTime_Click();
    void Default_Click();
    void CmdOK_Click();
    void CmdCancel_Click();

protected:
    // Escape and the close box cancel.
    void reject() override;

private:
    // Selects an entry as the program does: the list's click event follows.
    void select(QComboBox* list, int entry);
    // The length of the log on show, minutes.
    static double log_minutes();

    Ui::frmTrumpSet* ui;
};
