#include <QtTest>

#include <QAbstractButton>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "app/dialogs/file_dialogs.h"
#include "common/message_boxes.h"
#include "support/scripted_boxes.h"

using namespace kyt;

namespace {

// Runs `inspect` on the modal dialog once it is up.
template <class D, class F>
void when_shown(F inspect) {
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, inspect] {
        if (auto* d = qobject_cast<D*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            inspect(d);
        }
    });
    timer->start();
}

CommonDialog log_dialog(const char* title, const QString& folder, int flags) {
    CommonDialog d;
    d.title = title;
    d.filter = "Log Files (*.log)| *.log|All files (*.*) | *.*";
    d.default_ext = "LOG";
    d.initial_dir = folder.toStdString();
    d.flags = flags;
    return d;
}

}  // namespace

class tst_platform_dialogs : public QObject {
    Q_OBJECT
private slots:
    void message_box_styles_data() {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("icon");
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<QString>("default_button");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("text");
        // The console breaks its lines with CR, CR LF or LF; each is one line break on screen.
        QTest::newRow("16 critical") << 16 << int(QMessageBox::Critical) << QStringList{"OK"} << "OK" << int(answer_ok)
                                     << "Line one\r\rLine two";
        QTest::newRow("48 exclamation") << 48 << int(QMessageBox::Warning) << QStringList{"OK"} << "OK"
                                        << int(answer_ok) << "Line one\r\n\r\nLine two";
        QTest::newRow("292 question, No default") << 292 << int(QMessageBox::Question)
                                                  << QStringList{"Yes", "No"} << "No" << int(answer_no)
                                                  << "Line one\n\nLine two";
        QTest::newRow("276 critical, No default") << 276 << int(QMessageBox::Critical)
                                                  << QStringList{"Yes", "No"} << "No" << int(answer_no)
                                                  << "Line one\r\n\rLine two";
    }
    void message_box_styles() {
        QFETCH(int, style);
        QFETCH(int, icon);
        QFETCH(QStringList, buttons);
        QFETCH(QString, default_button);
        QFETCH(int, answer);
        QFETCH(QString, text);
        int seen_icon = -1;
        QStringList seen_buttons;
        QString seen_default, seen_title, seen_text;
        when_shown<QMessageBox>([&](QMessageBox* box) {
            seen_icon = box->icon();
            for (QAbstractButton* b : box->buttons()) seen_buttons << b->text().remove('&');
            seen_default = box->defaultButton()->text().remove('&');
            seen_title = box->windowTitle();
            seen_text = box->text();
            box->defaultButton()->click();
        });
        QtMessageBoxes boxes;
        QCOMPARE(boxes.show(text.toStdString(), style, "TITLE"), answer);
        QCOMPARE(seen_icon, icon);
        seen_buttons.sort();
        buttons.sort();
        QCOMPARE(seen_buttons, buttons);
        QCOMPARE(seen_default, default_button);
        QCOMPARE(seen_title, QString("TITLE"));
        QCOMPARE(seen_text, QString("Line one\n\nLine two"));
    }

    void scripted_boxes_answer_in_order() {
        ScriptedMessageBoxes boxes;
        boxes.answer(answer_yes);
        boxes.expect(2);
        QCOMPARE(boxes.show("a", 292, "T"), int(answer_yes));
        QCOMPARE(boxes.show("b", 292, "T"), int(answer_no));  // the default button of 292
        QCOMPARE(boxes.show("c", 16, "T"), int(answer_ok));
        QCOMPARE(boxes.shown.size(), std::size_t(3));
        // A box beyond those the test expected fails it.
        QEXPECT_FAIL("", "a box the test did not expect", Continue);
        boxes.show("d", 16, "T");
        QCOMPARE(boxes.shown.size(), std::size_t(4));
    }

    void open_dialog_behaviour() {
        QTemporaryDir dir;
        QFile f(dir.path() + "/pump.log");
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.close();
        const CommonDialog d = log_dialog("OPEN LOG", dir.path(), 6156);
        QFileDialog::FileMode mode{};
        QStringList filters;
        QString folder, title;
        when_shown<QFileDialog>([&](QFileDialog* dlg) {
            mode = dlg->fileMode();
            filters = dlg->nameFilters();
            folder = dlg->directory().absolutePath();
            title = dlg->windowTitle();
            dlg->selectFile(dir.path() + "/pump.log");
            QMetaObject::invokeMethod(dlg, "accept");
        });
        QtFileDialogs dialogs;
        QCOMPARE(QString::fromStdString(dialogs.show_open(d)), dir.path() + "/pump.log");
        QCOMPARE(mode, QFileDialog::ExistingFile);
        QCOMPARE(filters, (QStringList{"Log Files (*.log)", "All files (*)"}));
        QCOMPARE(folder, QDir(dir.path()).absolutePath());
        QCOMPARE(title, QString("OPEN LOG"));
    }

    void save_dialog_behaviour() {
        QTemporaryDir dir;
        const CommonDialog d = log_dialog("GET LOG DATA", dir.path(), 2062);
        bool confirms = false;
        QFileDialog::AcceptMode accept{};
        when_shown<QFileDialog>([&](QFileDialog* dlg) {
            confirms = !dlg->testOption(QFileDialog::DontConfirmOverwrite);
            accept = dlg->acceptMode();
            // A name typed without an extension takes the chosen filter's.
            dlg->findChild<QLineEdit*>("fileNameEdit")->setText("newlog");
            QMetaObject::invokeMethod(dlg, "accept");
        });
        QtFileDialogs dialogs;
        QCOMPARE(QString::fromStdString(dialogs.show_save(d)), dir.path() + "/newlog.log");
        QVERIFY(confirms);
        QCOMPARE(accept, QFileDialog::AcceptSave);
    }

    void giving_up_returns_nothing() {
        CommonDialog d;
        d.flags = 2062;
        when_shown<QFileDialog>([](QFileDialog* dlg) { dlg->reject(); });
        QtFileDialogs dialogs;
        QCOMPARE(dialogs.show_save(d), std::string());
    }
};

QTEST_MAIN(tst_platform_dialogs)
#include "tst_platform_dialogs.moc"
