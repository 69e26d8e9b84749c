#include "help/frmAbout.h"

#include <QPixmap>

#include "app/backdrop.h"
#include "common/forms.h"
#include "common/numbers.h"
#include "common/qt_text.h"
#include "ui_frmAbout.h"

using namespace kyt;

std::string about_notice(int year) {
    return "Copyright (C) " + std::to_string(year) + " Corvane Systems Inc. All rights reserved.";
}

frmAbout::frmAbout(QWidget* parent) : QDialog(parent), ui(new Ui::frmAbout) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    ui->ImgAboutLogo->setPixmap(QPixmap::fromImage(make_logo(96)));
    ui->lblNotice->setText(qs(about_notice(local_now().year)));
    connect(ui->CmdOK, &QPushButton::clicked, this, [] { forms::unload<frmAbout>(); });
    adjustSize();
    center_form(this);
}

frmAbout::~frmAbout() { delete ui; }
