#include "help/help_list_form.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QPushButton>

#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/qt_text.h"
#include "common/shared_state.h"
#include "help/frmKYTOverview.h"

using namespace kyt;

void show_help_list(HelpContext context) {
    const bool graph = context == HelpContext::graph;
    shared().help_topic = graph ? "graph" : "main";
    QWidget* list = forms::get(graph ? "frmKYTGHelp" : "frmKYTHelp");
    if (!list) return;
    list->show();
    list->raise();
    list->activateWindow();
}

HelpListForm::HelpListForm(HelpContext context, QWidget* parent) : QWidget(parent), context_(context) {
    setAttribute(Qt::WA_DeleteOnClose);
}

void HelpListForm::wire_topics(QAbstractButton* exit) {
    for (const HelpTopic& t : help_topics(context_)) {
        if (t.label.empty()) continue;
        auto* label = findChild<QPushButton*>(qs(t.label));
        if (!label) continue;
        // Shown as a link a user clicks or reaches with Tab.
        label->setFlat(true);
        label->setCursor(Qt::PointingHandCursor);
        label->setStyleSheet("QPushButton { text-align: left; color: palette(link); text-decoration: underline; "
                             "padding: 2px 6px; border: none; }"
                             "QPushButton:focus { border: 1px dotted palette(text); }");
        const int page = t.page;
        connect(label, &QPushButton::clicked, this, [this, page] { open_topic(page); });
    }
    connect(exit, &QAbstractButton::clicked, this, &HelpListForm::exit_help);
    adjustSize();
    center_form(this);
}

void HelpListForm::open_topic(int page) {
    shared().help_page = page;
    auto* topic = static_cast<frmKYTOverview*>(forms::get("frmKYTOverview"));
    if (!topic) return;
    topic->show();
    topic->raise();
    topic->activateWindow();
    topic->Form_Activate();
}

void HelpListForm::exit_help() {
    const char* opener = context_ == HelpContext::graph ? "frmGraph" : "frmMain";
    if (QWidget* w = forms::find(opener)) w->update();
    forms::unload(QString::fromLatin1(metaObject()->className()));
}

void HelpListForm::keyPressEvent(QKeyEvent* e) {
    if (e->key() == Qt::Key_F1) {
        tell(help_on_help_message());
        return;
    }
    QWidget::keyPressEvent(e);
}
