#include <QtTest>

#include "app/dialogs/file_dialogs.h"
#include "app/dialogs/global_save_open.h"
#include "common/qt_text.h"
#include "support/test_services.h"

using namespace kyt;

class tst_file_dialogs : public QObject {
    Q_OBJECT
private slots:
    // The first filter follows the report in hand; a chosen name moves the
    // save folder, where the next dialog opens.
    void open_dialog_data() {
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("filter");
        QTest::addColumn<bool>("chosen");
        QTest::newRow("LOG anywhere in the text") << "xxLOGxx" << kLogFirstFilter << false;
        QTest::newRow("lower case log is not LOG") << "data log" << kSummaryFirstFilter << false;
        QTest::newRow("nothing in hand, a name chosen") << "" << kSummaryFirstFilter << true;
    }
    void open_dialog() {
        QFETCH(QString, report);
        QFETCH(QString, filter);
        QFETCH(bool, chosen);
        auto t = test::install_test_services();
        QTemporaryDir other;
        shared().dirs.save_dir = "/data/save";
        shared().report_text = report.toStdString();
        const std::string name = chosen ? ss(other.path()) + "/pump.log" : "";
        t.dialogs->queue(name);
        show_open_dialog();
        const auto& r = t.dialogs->requests.at(0);
        QVERIFY(!r.save);
        QCOMPARE(qs(r.dialog.filter), filter);
        QCOMPARE(r.dialog.default_ext, filter == kLogFirstFilter ? "LOG" : "SUM");
        QCOMPARE(r.dialog.initial_dir, std::string("/data/save"));
        QCOMPARE(shared().dirs.file_name, name);
        const std::string folder = chosen ? ss(other.path()) : "/data/save";
        QCOMPARE(t.settings->get_setting("KYT", "STARTUP", "savedir", "-"), chosen ? folder : "-");
        show_open_dialog();
        QCOMPARE(t.dialogs->requests.back().dialog.initial_dir, folder);
    }

    // The chosen name is emptied before anything is written to it and moves
    // the save folder; a name given up or refused is told and moves nothing.
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
        // A folder that is a plain file cannot hold a new file, whoever runs the test.
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

QTEST_MAIN(tst_file_dialogs)
#include "tst_file_dialogs.moc"
