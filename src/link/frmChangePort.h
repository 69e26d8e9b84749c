#pragma once
// The dialog that changes the serial port. Its choices are those of the scan
// at start-up: a port that failed then stays disabled until the program
// restarts.

#include <QDialog>

namespace Ui {
class frmChangePort;
}
class QRadioButton;

class frmChangePort : public QDialog {
    Q_OBJECT
public:
    explicit frmChangePort(QWidget* parent = nullptr);
    ~frmChangePort() override;

    void setup_comm_option_buttons();
    void cmdUpdate_Click();
    void cmdCancel_Click();

protected:
    bool event(QEvent* e) override;

private:
    QRadioButton* option(int port) const;
    Ui::frmChangePort* ui;
};
