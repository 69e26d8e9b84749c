#pragma once
// The small notice shown while the analyser sends a test's summary. Its
// Cancel gives the summary up: the file begun is deleted and the run moves
// on to its next phase.

#include <QWidget>

namespace Ui {
class frmSummary;
}

class frmSummary : public QWidget {
    Q_OBJECT
public:
    explicit frmSummary(QWidget* parent = nullptr);
    ~frmSummary() override;

    void cmdCancel_Click();

private:
    Ui::frmSummary* ui;
};
