#pragma once
// The serial port test: the analyser is told to send two fixed lines, and the
// form shows what arrives under what should arrive, for the operator's eye.

#include <QTimer>
#include <QWidget>
#include <string>

namespace Ui {
class frmTestPort;
}

class frmTestPort : public QWidget {
    Q_OBJECT
public:
    explicit frmTestPort(QWidget* parent = nullptr);
    ~frmTestPort() override;

    void Command1_Click();
    void Command3_Click();
    void GetDataTimer_Timer();

    QTimer GetDataTimer;

private:
    void Form_Load();
    void show_received();

    Ui::frmTestPort* ui;
    std::string received_;  // what arrived, as it arrived
};
