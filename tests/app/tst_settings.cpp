#include <QtTest>

#include "app/settings/ini_settings_store.h"
#include "app/settings/read_ini.h"
#include "support/test_services.h"

using namespace kyt;

class tst_settings : public QObject {
    Q_OBJECT
private slots:
    // The port and series as stored (Comm 2, series C when none is), the folders from the start folder, written back.
    void read_at_start_data() {
        QTest::addColumn<QString>("comm");  // "-": nothing stored
        QTest::addColumn<QString>("series");
        QTest::addColumn<int>("port");
        QTest::addColumn<char>("letter");
        QTest::newRow("first start") << "-" << "-" << 2 << 'C';
        QTest::newRow("long series cut to one letter") << " 4x" << "Ax" << 4 << 'A';
        QTest::newRow("port not a number reads as 0") << "two" << "D" << 0 << 'D';
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
            store.save_setting("kyt", "Startup", "comm", comm.toStdString());
            store.save_setting("kyt", "Startup", "series", series.toStdString());
            store.save_setting("kyt", "Startup", "savedir", "/data/pumps");
        }
        SharedState s;
        read_ini(store, "/home/tech/kyt", s);
        QCOMPARE(s.port.comm_port, port);
        QCOMPARE(s.port.series, letter);
        QVERIFY(s.run.header_wanted && s.run.header_entered);
        const std::string home = "/home/tech/kyt", save = comm == "-" ? home + "/save" : "/data/pumps";
        const std::vector<std::string> folders{home, save, home + "/save", home + "/help"};
        QCOMPARE((std::vector<std::string>{s.dirs.main_dir, s.dirs.save_dir, s.dirs.init_dir, s.dirs.help_dir}), folders);
        QCOMPARE(store.flush(), std::string());
        IniSettingsStore again(folder);
        std::vector<std::string> stored;
        for (const char* key : {"maindir", "savedir", "initdir", "helpdir"})
            stored.push_back(again.get_setting("kyt", "startup", key));
        QCOMPARE(stored, folders);
    }

    // Names in any spelling find one key, kept as first written; values keep their commas and blanks.
    void names_are_found_without_regard_to_case() {
        const QString folder = test::fresh_settings_folder();
        {
            IniSettingsStore store(folder);
            store.save_setting("kyt", "Startup", "FIELD4MANDATORY", "True");
            QCOMPARE(store.get_setting("KYT", "STARTUP", "field4mandatory", "x"), std::string("True"));
            store.save_setting("Kyt", "startup", "Field4Mandatory", " 9600,N,8,1 ");
            store.save_setting("kyt", "Startup", "series", "D");
            store.delete_setting("KYT", "STARTUP", "SERIES");
        }
        QSettings file(folder + "/kyt.ini", QSettings::IniFormat);
        QCOMPARE(file.childGroups(), QStringList{"Startup"});
        file.beginGroup("Startup");
        QCOMPARE(file.childKeys(), QStringList{"FIELD4MANDATORY"});
        QCOMPARE(IniSettingsStore(folder).get_setting("kyt", "Startup", "field4Mandatory"), std::string(" 9600,N,8,1 "));
    }

    // A folder that is a plain file cannot hold the settings, whoever runs the test.
    void an_unwritable_folder_is_reported() {
        QTemporaryDir dir;
        QVERIFY(QFile(dir.path() + "/blocked").open(QIODevice::WriteOnly));
        IniSettingsStore store(dir.path() + "/blocked/kyt-console");
        store.save_setting("kyt", "Startup", "comm", "3");
        const std::string why = store.flush();
        QVERIFY2(why.find("kyt.ini could not be written") != std::string::npos, why.c_str());
    }
};

QTEST_APPLESS_MAIN(tst_settings)
#include "tst_settings.moc"
