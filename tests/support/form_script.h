#pragma once
// Drives a shown form as an operator does, from a short script (run_script):
// "focus:NAME", "type:TEXT", "enter", "tab", "backspace", "left", "erase" (all
// of the field), "pick:N" (from the combo box's list), "click:NAME" (a mouse
// click), "press:NAME" (the click without a change of focus); pending events
// are served after each step.

#include <QtTest>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>

#include <functional>
#include <string>

#include "common/forms.h"
#include "common/message_boxes.h"
#include "support/scripted_boxes.h"

namespace kyt::test {

inline void serve_events() {
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

// Shown and active, so that focus moves as on a desktop.
inline bool show_active(QWidget* form) {
    form->show();
    form->activateWindow();
    const bool ok = QTest::qWaitForWindowActive(form);
    serve_events();
    return ok;
}

inline void flush_deletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

// A new instance of the form, shown and active.
template <class F>
F* open_fresh() {
    forms::unload<F>();
    flush_deletes();
    F* f = forms::get<F>();
    show_active(f);
    return f;
}

// Runs `act` on the named form once it is on show (the modal dialog the next
// step opens); drop_waits() drops any still pending.
inline void when_shown(const QString& name, std::function<void(QWidget*)> act) {
    auto* poll = new QTimer(QCoreApplication::instance());
    poll->setObjectName("when_shown");
    QObject::connect(poll, &QTimer::timeout, [poll, name, act] {
        QWidget* w = forms::find(name);
        if (!w || !w->isVisible()) return;
        poll->stop();
        poll->deleteLater();
        act(w);
    });
    poll->start(5);
}

inline void drop_waits() {
    for (QTimer* poll : QCoreApplication::instance()->findChildren<QTimer*>("when_shown", Qt::FindDirectChildrenOnly))
        delete poll;
}

inline void expect_box(const ScriptedMessageBoxes::Box& box, const std::string& text, int style,
                       const std::string& title) {
    QCOMPARE(box.text, text);
    QCOMPARE(box.style, style);
    QCOMPARE(box.title, title);
}

inline void run_script(QWidget* form, const QStringList& steps) {
    static const QHash<QString, Qt::Key> keys{
        {"enter", Qt::Key_Return}, {"tab", Qt::Key_Tab}, {"backspace", Qt::Key_Backspace}, {"left", Qt::Key_Left}};
    for (const QString& step : steps) {
        const QString verb = step.section(':', 0, 0);
        const QString arg = step.section(':', 1);
        QWidget* focus = QApplication::focusWidget();
        if (verb == "focus") {
            QWidget* w = form->findChild<QWidget*>(arg);
            QVERIFY2(w, qPrintable("no widget " + arg));
            w->setFocus(Qt::OtherFocusReason);
        } else if (verb == "type") {
            QVERIFY(focus);
            QTest::keyClicks(focus, arg);
        } else if (keys.contains(verb)) {
            QTest::keyClick(focus, keys.value(verb));
        } else if (verb == "erase") {
            QTest::keyClick(focus, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClick(focus, Qt::Key_Backspace);
        } else if (verb == "pick") {
            auto* box = qobject_cast<QComboBox*>(focus);
            QVERIFY(box);
            box->setCurrentIndex(arg.toInt());
            if (box->lineEdit()) box->lineEdit()->setModified(false);
            emit box->activated(arg.toInt());
        } else if (verb == "click" || verb == "press") {
            auto* b = form->findChild<QAbstractButton*>(arg);
            QVERIFY2(b, qPrintable("no button " + arg));
            verb == "click" ? QTest::mouseClick(b, Qt::LeftButton) : b->click();
        } else {
            QFAIL(qPrintable("unknown step " + step));
        }
        serve_events();
    }
}

// The base rate dialog, once up: the text typed and Enter; cancelled if it stays.
inline void enter_rate_when_shown(const QString& typed) {
    when_shown("frmSetRate", [typed](QWidget* d) {
        run_script(d, {"focus:txtSetRate", "type:" + typed, "enter"});
        if (forms::find("frmSetRate")) d->findChild<QAbstractButton*>("cmdCancel")->click();
    });
}

}  // namespace kyt::test
