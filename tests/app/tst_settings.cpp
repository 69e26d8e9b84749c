#include <QtTest>

#include "app/settings/ini_settings_store.h"
#include "app/settings/read_ini.h"
#include "support/memory_settings_store.h"
#include "support/test_services.h"

using namespace kyt;

class tst_settings : public QObject {
    Q_OBJECT
private slots:
    // What a start reads: the port and the series as stored (Comm 2 and
    // series C when none is), the folders from the start folder unless one
    // is stored. The four folders are written back.
    void read_at_start_data() {
        QTest::addColumn<QString>("comm");  // with the series and the save folder; "-": nothing stored
        QTest::addColumn<QString>("series");
        QTest::addColumn<int>("port");
        QTest::addColumn<char>("letter");
        QTest::newRow("first start") << "-" << "-" << 2 << 'C';
        QTest::newRow("long series cut to one letter") << "2" << "Cx" << 2 << 'C';
        QTest::newRow("port not a number reads as 0") << "two" << "D" << 0 << 'D';
        QTest::newRow("port with blanks and a tail") << " 4x" << "A" << 4 << 'A';
        QTest::newRow("empty series is a blank") << "1" << "" << 1 << ' ';
        QTest::newRow("port too large for 16 bits") << "70000" << "C" << 0 << 'C';
    }
    void read_at_start() {
        QFETCH(QString, comm);
        QFETCH(QString, series);
        QFETCH(int, port);
        QFETCH(char, letter);
        const QString folder = test::fresh_settings_folder();
        IniSettingsStore store(folder);
        if (comm != "-") {
            store.save_setting("KYT", "STARTUP", "comm", comm.toStdString());
            store.save_setting("kyt", "startup", "series", series.toStdString());
            store.save_setting("kyt", "Startup", "savedir", "/data/pumps");
        }
        SharedState s;
        read_ini(store, "/home/tech/kyt", s);
        QCOMPARE(s.port.comm_port, port);
        QCOMPARE(s.port.series, letter);
        QVERIFY(s.run.header_wanted && s.run.header_entered);
        const std::string home = "/home/tech/kyt", save = comm == "-" ? home + "/save" : "/data/pumps";
        const std::pair<const char*, std::string> folders[] = {
            {"maindir", home}, {"savedir", save}, {"initdir", home + "/save"}, {"helpdir", home + "/help"}};
        QCOMPARE((std::vector<std::string>{s.dirs.main_dir, s.dirs.save_dir, s.dirs.init_dir, s.dirs.help_dir}),
                 (std::vector<std::string>{home, save, home + "/save", home + "/help"}));
        QCOMPARE(store.flush(), std::string());
        IniSettingsStore again(folder);
        for (const auto& [key, value] : folders) QCOMPARE(again.get_setting("kyt", "startup", key, "-"), value);
        QCOMPARE(again.get_setting("kyt", "startup", "comm", "-"), comm.toStdString());
    }

    // Names in any spelling, one key in the file as it was first written,
    // read again by the next store.
    void names_are_found_without_regard_to_case() {
        const QString folder = test::fresh_settings_folder();
        {
            IniSettingsStore store(folder);
            store.save_setting("kyt", "Startup", "FIELD4MANDATORY", "True");
            QCOMPARE(store.get_setting("KYT", "STARTUP", "field4mandatory", "x"), std::string("True"));
            store.save_setting("Kyt", "startup", "Field4Mandatory", "False");
            store.save_setting("kyt", "Startup", "series", "D");
            store.delete_setting("KYT", "STARTUP", "SERIES");
        }
        QSettings file(folder + "/kyt.ini", QSettings::IniFormat);
        QCOMPARE(file.childGroups(), QStringList{"Startup"});
        file.beginGroup("Startup");
        QCOMPARE(file.childKeys(), QStringList{"FIELD4MANDATORY"});
        IniSettingsStore next(folder);
        QCOMPARE(next.get_setting("kyt", "Startup", "field4Mandatory"), std::string("False"));
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
