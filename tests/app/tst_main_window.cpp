// The main window at start and exit, and the save dialog the forms share.

#include <QtTest>

#include "app/dialogs/global_save_open.h"
#include "app/frmMain.h"
#include "common/qt_text.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

frmMain* fresh_main() {
    forms::unload<frmMain>();
    test::flush_deletes();
    return forms::get<frmMain>();
}

}  // namespace

class tst_main_window : public QObject {
    Q_OBJECT
private slots:
    // The port stored in the captions; one that cannot be used is told, and with no port free the port menus are off.
    void start_up_on_the_stored_port_data() {
        QTest::addColumn<QList<int>>("failing");
        QTest::addColumn<QString>("comm");
        QTest::addColumn<int>("port");
        QTest::addColumn<QString>("box");
        QTest::addColumn<bool>("menus_enabled");
        const QString none = "Sorry no comm ports available\r\rIf you wish to use a comm port with KYT, please close any "
                             "other\rprograms that are using comm ports and restart KYT.";
        const QString bad = "Current selected Comm port is not functioning properly.\r\rYou may goto configuration "
                            "to change comm ports settings.";
        QTest::newRow("port 3 chosen, only 1 free") << QList<int>{2, 3, 4} << "3" << 3 << bad << true;
        QTest::newRow("no port free: one box, the open is silent") << QList<int>{1, 2, 3, 4} << "2" << 2 << none << false;
        QTest::newRow("port 0 from a bad setting") << QList<int>{0} << "x" << 0 << bad << true;
    }
    void start_up_on_the_stored_port() {
        QFETCH(QList<int>, failing);
        QFETCH(QString, comm);
        QFETCH(int, port);
        QFETCH(QString, box);
        QFETCH(bool, menus_enabled);
        auto t = test::install_test_services();
        t.boxes->expect();
        for (int p : failing) t.serial->failing.insert(p);
        t.settings->save_setting("kyt", "Startup", "comm", comm.toStdString());
        for (const char* f : {"frmDownload", "frmTestPort", "frmChangePort"})
            forms::register_factory(f, [] { return new QWidget; });
        frmMain* m = fresh_main();
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        test::expect_box(t.boxes->shown[0], ss(box), 16, "ERROR");
        for (const char* name : {"mnuCommPort", "mnuDownload", "mnuTestPort"})
            QCOMPARE(m->findChild<QAction*>(name)->isEnabled(), menus_enabled);
        QVERIFY(!t.serial->port_open());
        QCOMPARE(m->findChild<QLabel*>("lblStatus")->text(), QString("Comm Port:  %1").arg(port));
        QCOMPARE(m->windowTitle(), QString("KYT CONSOLE  -  Comm %1").arg(port));
    }

    void exit_asks_and_removes_the_capture_file_on_yes_only_data() {
        QTest::addColumn<bool>("unsaved");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("style");
        QTest::newRow("yes") << false << int(answer_yes) << "Are you sure want to quit KYT?" << 292;
        QTest::newRow("unsaved, no")
            << true << int(answer_no) << "You have not saved your changes to file.\rAre you sure you want to quit KYT?"
            << 276;
    }
    void exit_asks_and_removes_the_capture_file_on_yes_only() {
        QFETCH(bool, unsaved);
        QFETCH(int, answer);
        QFETCH(QString, text);
        QFETCH(int, style);
        auto t = test::install_test_services();
        QTemporaryDir work;
        t.settings->save_setting("kyt", "Startup", "savedir", ss(work.path()));
        frmMain* m = fresh_main();
        shared().run.changes_unsaved = unsaved;
        QFile temp(work.path() + "/tempfile.dat");
        QVERIFY(temp.open(QIODevice::WriteOnly) && temp.write("captured") == 8);
        temp.close();
        t.boxes->shown.clear();
        t.boxes->answer(answer);
        QCOMPARE(m->exit_kyt(), answer == answer_yes);
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        test::expect_box(t.boxes->shown[0], ss(text), style, "EXIT KYT CONSOLE");
        QCOMPARE(temp.exists(), answer != answer_yes);
    }

    // A chosen name is emptied before anything is written and moves the save folder; one given up or refused is told.
    void save_dialog_data() {
        QTest::addColumn<QString>("name");  // in a temporary folder; empty: none chosen
        QTest::addColumn<bool>("dialog_fails");
        QTest::addColumn<QStringList>("boxes");  // "TITLE: text"
        QTest::newRow("chosen") << "existing.sum" << false << QStringList{};
        QTest::newRow("gave up") << "" << false << QStringList{"CANCEL SAVE: Saving file cancelled"};
        QTest::newRow("unwritable folder")
            << "NOTADIR/x.log" << false
            << QStringList{"INVALID FILE NAME: Bad file name", "CANCEL SAVE: Saving file cancelled"};
        QTest::newRow("dialog error") << "" << true << QStringList{"BAD FILE NAME: Bad file name entered"};
    }
    void save_dialog() {
        QFETCH(QString, name);
        QFETCH(bool, dialog_fails);
        QFETCH(QStringList, boxes);
        auto t = test::install_test_services();
        t.boxes->expect(std::size_t(boxes.size()));
        QTemporaryDir dir;
        for (const char* f : {"/existing.sum", "/NOTADIR"}) {
            QFile file(dir.path() + f);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("old content") == 11);
        }
        shared().dirs.save_dir = "/data/save";
        shared().run.log_file_wanted = true;
        t.dialogs->fail_next = dialog_fails;
        const std::string path = name.isEmpty() ? "" : ss(dir.path() + "/" + name);
        t.dialogs->queue(path);
        const bool chosen = boxes.isEmpty();
        QCOMPARE(show_save_dialog(), chosen ? path : std::string());
        QVERIFY(t.dialogs->requests.at(0).save);
        QCOMPARE(qs(t.dialogs->requests[0].dialog.filter), kLogFirstFilter);
        QStringList shown;
        for (const auto& b : t.boxes->shown) shown << qs(b.title + ": " + b.text) + (b.style == 48 ? "" : " (style)");
        QCOMPARE(shown, boxes);
        QCOMPARE(QFileInfo(dir.path() + "/existing.sum").size(), chosen ? 0 : 11);
        QCOMPARE(shared().dirs.save_dir, chosen ? ss(dir.path()) : std::string("/data/save"));
        QCOMPARE(t.settings->get_setting("kyt", "startup", "savedir", "-"), chosen ? ss(dir.path()) : "-");
    }
};

QTEST_MAIN(tst_main_window)
#include "tst_main_window.moc"
