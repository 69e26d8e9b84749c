#include <QtTest>

#include "app/dialogs/file_dialogs.h"
#include "app/dialogs/global_save_open.h"
#include "common/qt_text.h"
#include "support/test_services.h"

using namespace kyt;

class tst_file_dialogs : public QObject {
    Q_OBJECT
private slots:
    void open_dialog_filter_order_data() {
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QString>("ext");
        QTest::newRow("a log in hand") << "   DATA LOG\r\n" << kLogFirstFilter << "LOG";
        QTest::newRow("LOG anywhere in the text") << "xxLOGxx" << kLogFirstFilter << "LOG";
        QTest::newRow("a summary") << "SUMMARY" << kSummaryFirstFilter << "SUM";
        QTest::newRow("lower case log is not LOG") << "data log" << kSummaryFirstFilter << "SUM";
        QTest::newRow("nothing in hand") << "" << kSummaryFirstFilter << "SUM";
    }
    void open_dialog_filter_order() {
        QFETCH(QString, report);
        QFETCH(QString, filter);
        QFETCH(QString, ext);
        auto t = test::install_test_services();
        shared().dirs.save_dir = "/data/save";
        shared().report_text = report.toStdString();
        t.dialogs->queue("");
        show_open_dialog();
        QCOMPARE(t.dialogs->requests.size(), std::size_t(1));
        const auto& r = t.dialogs->requests[0];
        QVERIFY(!r.save);
        QCOMPARE(QString::fromStdString(r.dialog.filter), filter);
        QCOMPARE(QString::fromStdString(r.dialog.default_ext), ext);
        QCOMPARE(r.dialog.flags, 6156);
        QCOMPARE(r.dialog.initial_dir, std::string("/data/save"));
        QVERIFY(shared().dirs.file_name.empty());
        QVERIFY(t.boxes->shown.empty());
    }

    void a_chosen_name_moves_the_save_folder() {
        auto t = test::install_test_services();
        QTemporaryDir other;
        shared().dirs.save_dir = "/data/save";
        const std::string name = ss(other.path()) + "/pump.log";
        t.dialogs->queue(name);
        show_open_dialog();
        QCOMPARE(shared().dirs.file_name, name);
        QCOMPARE(shared().dirs.save_dir, ss(other.path()));
        QCOMPARE(t.settings->get_setting("KYT", "STARTUP", "savedir"), ss(other.path()));
        // The next dialog opens there.
        t.dialogs->queue("");
        show_open_dialog();
        QCOMPARE(t.dialogs->requests.back().dialog.initial_dir, ss(other.path()));
    }

    void save_dialog_data() {
        QTest::addColumn<bool>("log_wanted");
        QTest::addColumn<QString>("filter");
        QTest::newRow("log first") << true << kLogFirstFilter;
        QTest::newRow("summary first") << false << kSummaryFirstFilter;
    }
    void save_dialog() {
        QFETCH(bool, log_wanted);
        QFETCH(QString, filter);
        auto t = test::install_test_services();
        QTemporaryDir dir;
        shared().run.log_file_wanted = log_wanted;
        const std::string name = ss(dir.path()) + "/existing.sum";
        QFile f(QString::fromStdString(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("old content");
        f.close();
        t.dialogs->queue(name);
        QCOMPARE(show_save_dialog(), name);
        const auto& r = t.dialogs->requests[0];
        QVERIFY(r.save);
        QCOMPARE(QString::fromStdString(r.dialog.filter), filter);
        QCOMPARE(r.dialog.flags, 2062);
        // The chosen name exists and is empty before anything is written to it.
        QCOMPARE(QFileInfo(QString::fromStdString(name)).size(), 0);
        QCOMPARE(shared().dirs.save_dir, ss(dir.path()));
        QVERIFY(t.boxes->shown.empty());
    }

    void save_dialog_failures_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("dialog_fails");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QStringList>("titles");
        QTest::newRow("gave up") << "" << false << QStringList{"Saving file cancelled"} << QStringList{"CANCEL SAVE"};
        QTest::newRow("unwritable folder")
            << "NOTADIR/x.log" << false << QStringList{"Bad file name", "Saving file cancelled"}
            << QStringList{"INVALID FILE NAME", "CANCEL SAVE"};
        QTest::newRow("dialog error") << "" << true << QStringList{"Bad file name entered"} << QStringList{"BAD FILE NAME"};
    }
    void save_dialog_failures() {
        QFETCH(QString, name);
        QFETCH(bool, dialog_fails);
        QFETCH(QStringList, texts);
        QFETCH(QStringList, titles);
        auto t = test::install_test_services();
        t.boxes->expect(std::size_t(texts.size()));
        QTemporaryDir dir;
        // A folder that is a plain file cannot hold a new file, whoever runs the test.
        QFile blocker(dir.path() + "/NOTADIR");
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        shared().dirs.save_dir = ss(dir.path());
        t.dialogs->fail_next = dialog_fails;
        t.dialogs->queue(name.isEmpty() ? "" : ss(dir.path() + "/" + name));
        QCOMPARE(show_save_dialog(), std::string());
        QStringList shown_texts, shown_titles;
        for (const auto& b : t.boxes->shown) {
            shown_texts << QString::fromStdString(b.text);
            shown_titles << QString::fromStdString(b.title);
            QCOMPARE(b.style, 48);
        }
        QCOMPARE(shown_texts, texts);
        QCOMPARE(shown_titles, titles);
        QCOMPARE(shared().dirs.save_dir, ss(dir.path()));
    }

    void check_file_name_empties_an_existing_file() {
        auto t = test::install_test_services();
        QTemporaryDir dir;
        const QString name = dir.path() + "/report.dat";
        QFile f(name);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("a workshop's report");
        f.close();
        QCOMPARE(check_file_name(ss(name)), ss(name));
        QCOMPARE(QFileInfo(name).size(), 0);
        QCOMPARE(t.settings->get_setting("kyt", "startup", "savedir"), ss(dir.path()));
    }

    void qt_filters_data() {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("log first") << kLogFirstFilter
                                   << QStringList{"Log Files (*.log)", "Summary files (*.sum)", "Data files (*.dat)",
                                                  "All files (*)"};
        QTest::newRow("summary first") << kSummaryFirstFilter
                                       << QStringList{"Summary Files (*.sum)", "Log files (*.log)",
                                                      "Data files (*.dat)", "All files (*)"};
        QTest::newRow("description without pattern") << "Text|*.txt" << QStringList{"Text (*.txt)"};
        QTest::newRow("odd piece left over") << "Text|*.txt|Lost" << QStringList{"Text (*.txt)"};
    }
    void qt_filters() {
        QFETCH(QString, filter);
        QFETCH(QStringList, expected);
        QCOMPARE(qt_name_filters(filter.toStdString()), expected);
    }
};

QTEST_MAIN(tst_file_dialogs)
#include "tst_file_dialogs.moc"
