#include "common/message_boxes.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include "common/qt_text.h"
#include "common/services.h"

namespace kyt {

std::vector<int> box_buttons(int style) {
    switch (style & 7) {
        case box_ok_cancel: return {answer_ok, answer_cancel};
        case 2: return {answer_abort, answer_retry, answer_ignore};
        case box_yes_no_cancel: return {answer_yes, answer_no, answer_cancel};
        case box_yes_no: return {answer_yes, answer_no};
        case box_retry_cancel: return {answer_retry, answer_cancel};
        default: return {answer_ok};
    }
}

int box_default_answer(int style) {
    const auto buttons = box_buttons(style);
    const std::size_t index = (style & 0x300) >> 8;
    return buttons[index < buttons.size() ? index : 0];
}

int QtMessageBoxes::show(const std::string& text, int style, const std::string& title) {
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(qs(title));
    // The console's texts break their lines with CR, LF or both; Qt breaks
    // a plain text at LF only.
    QString shown = qs_message(text);
    shown.replace("\r\n", "\n");
    shown.replace('\r', '\n');
    box.setText(shown);
    switch (style & 0x70) {
        case box_critical: box.setIcon(QMessageBox::Critical); break;
        case box_question: box.setIcon(QMessageBox::Question); break;
        case box_exclamation: box.setIcon(QMessageBox::Warning); break;
        case box_information: box.setIcon(QMessageBox::Information); break;
        default: box.setIcon(QMessageBox::NoIcon); break;
    }
    struct Choice {
        int answer;
        QMessageBox::StandardButton button;
    };
    static const Choice choices[] = {
        {answer_ok, QMessageBox::Ok},       {answer_cancel, QMessageBox::Cancel}, {answer_abort, QMessageBox::Abort},
        {answer_retry, QMessageBox::Retry}, {answer_ignore, QMessageBox::Ignore}, {answer_yes, QMessageBox::Yes},
        {answer_no, QMessageBox::No},
    };
    const int wanted_default = box_default_answer(style);
    for (int answer : box_buttons(style)) {
        for (const Choice& c : choices) {
            if (c.answer != answer) continue;
            QPushButton* b = box.addButton(c.button);
            if (answer == wanted_default) box.setDefaultButton(b);
        }
    }
    box.exec();
    const auto pressed = box.standardButton(box.clickedButton());
    for (const Choice& c : choices)
        if (c.button == pressed) return c.answer;
    // Closed without a button: the answer Cancel where there is one, else the default.
    const auto buttons = box_buttons(style);
    for (int b : buttons)
        if (b == answer_cancel) return answer_cancel;
    return wanted_default;
}

int msg_box(const std::string& text, int style, const std::string& title) {
    return services().boxes->show(text, style, title);
}

}  // namespace kyt
