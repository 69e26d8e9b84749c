#pragma once
// The About box: the product, its maker, the version and how to reach the
// maker.

#include <QDialog>

#include <string>

namespace Ui {
class frmAbout;
}

// The notice line, for the year given.
std::string about_notice(int year);

class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent = nullptr);
    ~frmAbout() override;

private:
    Ui::frmAbout* ui;
};
