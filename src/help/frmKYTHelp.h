#pragma once
// The main window's help: a topic per menu entry.

#include "help/help_list_form.h"

namespace Ui {
class frmKYTHelp;
}

class frmKYTHelp : public HelpListForm {
    Q_OBJECT
public:
    explicit frmKYTHelp(QWidget* parent = nullptr);
    ~frmKYTHelp() override;

private:
    Ui::frmKYTHelp* ui;
};
