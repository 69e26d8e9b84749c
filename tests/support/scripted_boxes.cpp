#include "support/scripted_boxes.h"

#include <QtTest>

namespace kyt {

int ScriptedMessageBoxes::show(const std::string& text, int style, const std::string& title) {
    shown.push_back({text, style, title});
    if (answers_.empty()) {
        if (strict_) {
            const QByteArray what = "A message box the test did not expect: \"" + QByteArray::fromStdString(title) +
                                    "\": \"" + QByteArray::fromStdString(text) + "\"";
            QTest::qFail(what.constData(), __FILE__, __LINE__);
        }
        return box_default_answer(style);
    }
    const int a = answers_.front();
    answers_.pop_front();
    return a == default_answer ? box_default_answer(style) : a;
}

}  // namespace kyt
