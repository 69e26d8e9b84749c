#include "help/frmKYTOverview.h"

#include <QCoreApplication>
#include <QDir>

#include "common/forms.h"
#include "common/qt_text.h"
#include "common/shared_state.h"
#include "help/help_topics.h"
#include "ui_frmKYTOverview.h"

using namespace kyt;

frmKYTOverview::frmKYTOverview(QWidget* parent) : QWidget(parent), ui(new Ui::frmKYTOverview) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->cmdExit, &QPushButton::clicked, this, [] { forms::unload<frmKYTOverview>(); });
    center_form(this);
}

frmKYTOverview::~frmKYTOverview() { delete ui; }

std::vector<std::string> frmKYTOverview::help_folders() {
    return {shared().dirs.help_dir,
            ss_file(QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../share/kyt-console/help"))};
}

void frmKYTOverview::Form_Activate() {
    ui->txtKYTOverview->clear();
    const SharedState& s = shared();
    const HelpPage page = load_help_page(help_folders(), help_context_of(s.help_topic), s.help_page);
    if (!page.caption.empty()) setWindowTitle(qs(page.caption));
    // The text box takes line ends as they are; paragraphs are CR LF pairs.
    QString text = QString::fromUtf8(page.text.data(), static_cast<qsizetype>(page.text.size()));
    text.replace("\r\n", "\n");
    ui->txtKYTOverview->setPlainText(text);
}
