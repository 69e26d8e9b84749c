#pragma once
// The graph screens' help: a topic per command of the data log graph and the trumpet graph.

#include "help/help_list_form.h"

namespace Ui {
class frmKYTGHelp;
}

class frmKYTGHelp : public HelpListForm {
    Q_OBJECT
public:
    explicit frmKYTGHelp(QWidget* parent = nullptr);
    ~frmKYTGHelp() override;

private:
    Ui::frmKYTGHelp* ui;
};
