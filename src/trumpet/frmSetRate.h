#pragma once
// The base rate dialog of the data log graph and the trumpet: a new rate in
// ml/h against which the flow scales and the errors are taken.

#include <QDialog>

namespace Ui {
class frmSetRate;
}

class frmSetRate : public QDialog {
    Q_OBJECT
public:
    explicit frmSetRate(QWidget* parent = nullptr);
    ~frmSetRate() override;

    // Takes the typed rate: a number other than 0 becomes the base rate;
    // anything else is told.
    void update_rate();

protected:
    void showEvent(QShowEvent* e) override;
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    Ui::frmSetRate* ui;
};
