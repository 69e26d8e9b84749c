#pragma once
// A help list: one button-like label per topic, each opening the topic
// window, and a button that leaves help. The main window's list and the
// graph screens' list differ only in their topics and layout.

#include <QWidget>

#include "help/help_topics.h"

class QAbstractButton;

// The help list of that context brought up, help_topic set for it.
void show_help_list(kyt::HelpContext context);

class HelpListForm : public QWidget {
    Q_OBJECT
public:
    // Sets the help page and brings up the topic window on it.
    void open_topic(int page);
    // The window that opened help is repainted, and the list unloaded.
    void exit_help();

protected:
    explicit HelpListForm(kyt::HelpContext context, QWidget* parent = nullptr);
    // Once the .ui is set up: each topic's label and the exit button wired.
    void wire_topics(QAbstractButton* exit);
    // F1 in the list tells how help is used.
    void keyPressEvent(QKeyEvent* e) override;

private:
    kyt::HelpContext context_;
};
