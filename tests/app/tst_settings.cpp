#include <QtTest>

#include "app/settings/ini_settings_store.h"
#include "app/settings/read_ini.h"
#include "support/memory_settings_store.h"
#include "support/test_services.h"

using namespace kyt;

class tst_settings : public QObject {
    Q_OBJECT
private slots:
    void first_start_with_an_empty_store() {
        IniSettingsStore store(test::fresh_settings_folder());
        SharedState s;
        read_ini(store, "/home/tech/kyt", s);
        QCOMPARE(s.port.comm_port, 2);
        QCOMPARE(s.port.series, 'C');
        QVERIFY(s.run.header_wanted && s.run.header_entered);
        QCOMPARE(s.dirs.main_dir, std::string("/home/tech/kyt"));
        QCOMPARE(s.dirs.save_dir, std::string("/home/tech/kyt/save"));
        QCOMPARE(s.dirs.init_dir, std::string("/home/tech/kyt/save"));
        QCOMPARE(s.dirs.help_dir, std::string("/home/tech/kyt/help"));
        // All four folder keys exist after the first start, in the file itself.
        QSettings file(store.file_for("kyt"), QSettings::IniFormat);
        QCOMPARE(file.value("Startup/maindir").toString(), QString("/home/tech/kyt"));
        QCOMPARE(file.value("Startup/savedir").toString(), QString("/home/tech/kyt/save"));
        QCOMPARE(file.value("Startup/initdir").toString(), QString("/home/tech/kyt/save"));
        QCOMPARE(file.value("Startup/helpdir").toString(), QString("/home/tech/kyt/help"));
        QVERIFY(!file.contains("Startup/comm"));
    }

    void stored_values_win_over_the_start_folder_data() {
        QTest::addColumn<QString>("comm");
        QTest::addColumn<QString>("series");
        QTest::addColumn<int>("port");
        QTest::addColumn<char>("letter");
        QTest::newRow("port 3") << "3" << "C" << 3 << 'C';
        QTest::newRow("long series cut to one letter") << "2" << "Cx" << 2 << 'C';
        QTest::newRow("port not a number reads as 0") << "two" << "D" << 0 << 'D';
        QTest::newRow("port with blanks and a tail") << " 4x" << "A" << 4 << 'A';
        QTest::newRow("empty series is a blank") << "1" << "" << 1 << ' ';
        QTest::newRow("port too large for 16 bits") << "70000" << "C" << 0 << 'C';
    }
    void stored_values_win_over_the_start_folder() {
        QFETCH(QString, comm);
        QFETCH(QString, series);
        QFETCH(int, port);
        QFETCH(char, letter);
        IniSettingsStore store(test::fresh_settings_folder());
        store.save_setting("KYT", "STARTUP", "comm", comm.toStdString());
        store.save_setting("kyt", "startup", "series", series.toStdString());
        store.save_setting("kyt", "Startup", "savedir", "/data/pumps");
        SharedState s;
        read_ini(store, "/elsewhere", s);
        QCOMPARE(s.port.comm_port, port);
        QCOMPARE(s.port.series, letter);
        QCOMPARE(s.dirs.save_dir, std::string("/data/pumps"));
        QCOMPARE(s.dirs.main_dir, std::string("/elsewhere"));
    }

    void names_are_found_without_regard_to_case() {
        IniSettingsStore store(test::fresh_settings_folder());
        store.save_setting("kyt", "Startup", "FIELD4MANDATORY", "True");
        QCOMPARE(store.get_setting("KYT", "STARTUP", "field4mandatory", "x"), std::string("True"));
        store.save_setting("Kyt", "startup", "Field4Mandatory", "False");
        QCOMPARE(store.get_setting("kyt", "Startup", "FIELD4MANDATORY"), std::string("False"));
        // One key in the file, spelled as it was first written.
        QSettings file(store.file_for("kyt"), QSettings::IniFormat);
        QCOMPARE(file.childGroups(), QStringList{"Startup"});
        file.beginGroup("Startup");
        QCOMPARE(file.childKeys(), QStringList{"FIELD4MANDATORY"});
        file.endGroup();
        store.delete_setting("KYT", "STARTUP", "field4MANDATORY");
        QCOMPARE(store.get_setting("kyt", "Startup", "FIELD4MANDATORY", "absent"), std::string("absent"));
    }

    void values_outlive_the_store() {
        const QString folder = test::fresh_settings_folder();
        {
            IniSettingsStore first(folder);
            first.save_setting("kyt", "Startup", "comm", "3");
            first.save_setting("kyt", "Startup", "series", "D");
            first.delete_setting("kyt", "Startup", "series");
        }
        IniSettingsStore next(folder);
        QCOMPARE(next.get_setting("KYT", "STARTUP", "comm"), std::string("3"));
        QCOMPARE(next.get_setting("kyt", "startup", "series", "absent"), std::string("absent"));
    }

    void an_unwritable_folder_is_reported() {
        QTemporaryDir dir;
        // A folder that is a plain file cannot hold the settings, whoever runs the test.
        QFile blocker(dir.path() + "/blocked");
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        IniSettingsStore store(dir.path() + "/blocked/kyt-console");
        store.save_setting("kyt", "Startup", "comm", "3");
        const std::string why = store.flush();
        QVERIFY(!why.empty());
        QVERIFY(why.find("kyt.ini") != std::string::npos);
        IniSettingsStore good(dir.path() + "/good");
        good.save_setting("kyt", "Startup", "comm", "3");
        QCOMPARE(good.flush(), std::string());
    }

    void values_keep_their_text() {
        IniSettingsStore store(test::fresh_settings_folder());
        for (const std::string v : {"9600,N,8,1", " leading blank", "trailing blank ", "a=b;c", ""}) {
            store.save_setting("kyt", "Startup", "value", v);
            QCOMPARE(store.get_setting("kyt", "Startup", "value", "default"), v);
        }
    }

    void remember_save_dir_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<bool>("writes");
        QTest::newRow("file in a folder") << "/data/a/b.log" << "/data/a" << true;
        QTest::newRow("file at the root") << "/b.log" << "" << true;
        QTest::newRow("name without a folder") << "b.log" << "" << true;
        QTest::newRow("empty path writes nothing") << "" << "" << false;
        QTest::newRow("folder with a closing separator") << "/data/a/" << "/data/a" << true;
    }
    void remember_save_dir() {
        QFETCH(QString, path);
        QFETCH(QString, folder);
        QFETCH(bool, writes);
        MemorySettingsStore store;
        const std::string result = kyt::remember_save_dir(store, "/old/save", path.toStdString());
        QCOMPARE(QString::fromStdString(result), folder);
        // The key lags: it holds the save folder as it was before this call.
        QCOMPARE(store.contains("kyt", "startup", "savedir"), writes);
        if (writes) QCOMPARE(store.get_setting("kyt", "startup", "savedir"), std::string("/old/save"));
    }
};

QTEST_APPLESS_MAIN(tst_settings)
#include "tst_settings.moc"
