#include "help/frmKYTGHelp.h"

#include "ui_frmKYTGHelp.h"

frmKYTGHelp::frmKYTGHelp(QWidget* parent) : HelpListForm(kyt::HelpContext::graph, parent), ui(new Ui::frmKYTGHelp) {
    ui->setupUi(this);
    wire_topics(ui->cmdExit);
}

frmKYTGHelp::~frmKYTGHelp() { delete ui; }
