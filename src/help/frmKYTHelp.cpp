#include "help/frmKYTHelp.h"

#include "ui_frmKYTHelp.h"

frmKYTHelp::frmKYTHelp(QWidget* parent) : HelpListForm(kyt::HelpContext::main, parent), ui(new Ui::frmKYTHelp) {
    ui->setupUi(this);
    wire_topics(ui->cmdExitHelp);
}

frmKYTHelp::~frmKYTHelp() { delete ui; }
