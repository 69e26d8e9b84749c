#include <QtTest>

#include <QAbstractButton>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "app/dialogs/file_dialogs.h"
#include "common/message_boxes.h"

using namespace kyt;

namespace {

// Runs `inspect` on the modal dialog once it is up.
template <class D, class F>
void when_shown(F inspect) {
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, inspect] {
        if (auto* d = qobject_cast<D*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            inspect(d);
        }
    });
    timer->start(10);
}

}  // namespace

class tst_platform_dialogs : public QObject {
    Q_OBJECT
private slots:
    // Icon, buttons (the default first) and the answer of a style; CR, CR LF
    // and LF are each one line break on screen.
    void message_box_styles_data() {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("icon");
        QTest::addColumn<QString>("buttons");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("text");
        QTest::newRow("16 critical") << 16 << int(QMessageBox::Critical) << "OK" << int(answer_ok)
                                     << "Line one\r\rLine two";
        QTest::newRow("48 exclamation") << 48 << int(QMessageBox::Warning) << "OK" << int(answer_ok)
                                        << "Line one\r\n\r\nLine two";
        QTest::newRow("292 question, No default") << 292 << int(QMessageBox::Question) << "No Yes" << int(answer_no)
                                                  << "Line one\n\nLine two";
    }
    void message_box_styles() {
        QFETCH(int, style);
        QFETCH(int, icon);
        QFETCH(QString, buttons);
        QFETCH(int, answer);
        QFETCH(QString, text);
        QString seen;
        when_shown<QMessageBox>([&](QMessageBox* box) {
            QStringList others;
            for (QAbstractButton* b : box->buttons())
                if (b != box->defaultButton()) others << b->text().remove('&');
            others.prepend(box->defaultButton()->text().remove('&'));
            seen = QString("%1|%2|%3|%4").arg(box->icon()).arg(others.join(' '), box->windowTitle(), box->text());
            box->defaultButton()->click();
        });
        QCOMPARE(QtMessageBoxes().show(text.toStdString(), style, "TITLE"), answer);
        QCOMPARE(seen, QString("%1|%2|TITLE|Line one\n\nLine two").arg(icon).arg(buttons));
    }

    // A name typed without an extension takes the chosen filter's; giving up returns nothing.
    void file_dialog_data() {
        QTest::addColumn<bool>("save");
        QTest::addColumn<QString>("typed");  // empty: the dialog is given up
        QTest::addColumn<QString>("chosen");
        QTest::newRow("open an existing file") << false << "pump.log" << "pump.log";
        QTest::newRow("save takes the filter's extension") << true << "newlog" << "newlog.log";
        QTest::newRow("save given up") << true << "" << "";
    }
    void file_dialog() {
        QFETCH(bool, save);
        QFETCH(QString, typed);
        QFETCH(QString, chosen);
        QTemporaryDir dir;
        QVERIFY(QFile(dir.filePath("pump.log")).open(QIODevice::WriteOnly));
        CommonDialog d;
        d.title = "LOG FILE";
        d.filter = "Log Files (*.log)| *.log|All files (*.*) | *.*|Lost";  // an odd piece at the end is left out
        d.default_ext = "LOG";
        d.initial_dir = dir.path().toStdString();
        d.flags = save ? 2062 : 6156;
        QString seen;
        when_shown<QFileDialog>([&](QFileDialog* dlg) {
            seen = QString("%1|%2|%3|mode %4|accept %5|confirm %6")
                       .arg(dlg->windowTitle(), dlg->directory().absolutePath(), dlg->nameFilters().join(';'))
                       .arg(dlg->fileMode())
                       .arg(dlg->acceptMode())
                       .arg(!dlg->testOption(QFileDialog::DontConfirmOverwrite));
            if (typed.isEmpty()) return dlg->reject();
            dlg->findChild<QLineEdit*>("fileNameEdit")->setText(typed);
            QMetaObject::invokeMethod(dlg, "accept");
        });
        QtFileDialogs dialogs;
        const std::string got = save ? dialogs.show_save(d) : dialogs.show_open(d);
        QCOMPARE(QString::fromStdString(got), chosen.isEmpty() ? QString() : dir.filePath(chosen));
        QCOMPARE(seen, QString("LOG FILE|%1|Log Files (*.log);All files (*)|mode %2|accept %3|confirm 1")
                           .arg(QDir(dir.path()).absolutePath())
                           .arg(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile)
                           .arg(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen));
    }
};

QTEST_MAIN(tst_platform_dialogs)
#include "tst_platform_dialogs.moc"
