#pragma once
// Forms driven as an operator does; run_script's steps: "focus:NAME", "type:TEXT", "enter", "tab", "left",
// "pick:N" (a combo box's item), "click:NAME" (the mouse), "press:NAME" (no change of focus).

#include <QtTest>
#include <QtWidgets>

#include "common/forms.h"
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

// Runs `act` on the named form once it is on show; drop_waits() drops any still pending.
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

inline void drop_waits() { qDeleteAll(qApp->findChildren<QTimer*>("when_shown", Qt::FindDirectChildrenOnly)); }

inline void expect_box(const ScriptedMessageBoxes::Box& box, const std::string& text, int style,
                       const std::string& title) {
    QCOMPARE(box.text, text);
    QCOMPARE(box.style, style);
    QCOMPARE(box.title, title);
}

inline void run_script(QWidget* form, const QStringList& steps) {
    static const QHash<QString, Qt::Key> keys{{"enter", Qt::Key_Return}, {"tab", Qt::Key_Tab}, {"left", Qt::Key_Left}};
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
