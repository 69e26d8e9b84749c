#include <QtTest>

#include "admin/admin_lists.h"
#include "support/memory_settings_store.h"

using namespace kyt;

namespace {

// A store that keeps what was done to it, in order.
class RecordingStore final : public SettingsStore {
public:
    std::string get_setting(std::string_view app, std::string_view section, std::string_view key,
                            std::string_view default_value) override {
        return inner.get_setting(app, section, key, default_value);
    }
    void save_setting(std::string_view app, std::string_view section, std::string_view key,
                      std::string_view value) override {
        calls << QString::fromStdString("save " + std::string(key) + "=" + std::string(value));
        inner.save_setting(app, section, key, value);
    }
    void delete_setting(std::string_view app, std::string_view section, std::string_view key) override {
        calls << QString::fromStdString("delete " + std::string(key));
        inner.delete_setting(app, section, key);
    }
    MemorySettingsStore inner;
    QStringList calls;
};

}  // namespace

class tst_admin_lists : public QObject {
    Q_OBJECT
private slots:
    void numeric_texts_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("numeric");
        QTest::addColumn<double>("value");
        QTest::newRow("whole") << "25" << true << 25.0;
        QTest::newRow("blanks around") << "  25 " << true << 25.0;
        QTest::newRow("tab before") << "\t7" << true << 7.0;
        QTest::newRow("sign") << "-2.5" << true << -2.5;
        QTest::newRow("plus sign") << "+3" << true << 3.0;
        QTest::newRow("point first") << ".5" << true << 0.5;
        QTest::newRow("point last") << "5." << true << 5.0;
        QTest::newRow("exponent") << "1.5E2" << true << 150.0;
        QTest::newRow("small exponent, signed") << "25e-1" << true << 2.5;
        QTest::newRow("D exponent") << "2D3" << true << 2000.0;
        QTest::newRow("empty") << "" << false << 0.0;
        QTest::newRow("blanks only") << "   " << false << 0.0;
        QTest::newRow("letter") << "x" << false << 0.0;
        QTest::newRow("number then letter") << "25x" << false << 0.0;
        QTest::newRow("two rates") << "25 50" << false << 0.0;
        QTest::newRow("two rates with a comma") << "25,50" << false << 0.0;
        QTest::newRow("blank after the sign") << "- 5" << false << 0.0;
        QTest::newRow("point alone") << "." << false << 0.0;
        QTest::newRow("sign alone") << "-" << false << 0.0;
        QTest::newRow("exponent without digits") << "1E" << false << 0.0;
        QTest::newRow("exponent without mantissa") << "E5" << false << 0.0;
        QTest::newRow("two points") << "1.2.3" << false << 0.0;
        QTest::newRow("beyond a double") << "1E999" << false << 0.0;
    }
    void numeric_texts() {
        QFETCH(QString, text);
        QFETCH(bool, numeric);
        QFETCH(double, value);
        const std::string s = text.toStdString();
        QCOMPARE(is_numeric(s), numeric);
        QCOMPARE(numeric_value(s).value_or(0.0), value);
    }

    // Counts first in their fixed order, then list by list the elements, the
    // stale keys and the flag, then the two flags without a list, and the
    // password last.
    void save_writes_in_order() {
        RecordingStore store;
        AdminLists a;
        a.list_count = {0, 4, 0, 1, 0, 0, 0, 0, 0, 0};
        a.lists[2] = {"Ann"};
        a.mandatory[2] = true;
        a.mandatory[10] = true;
        ListCounts loaded{};
        loaded[count_slot(2)] = 3;
        save_admin_lists({store, kApp, kStartup}, a, loaded, "pw");
        const QStringList counts = store.calls.mid(0, kCountSlots);
        QCOMPARE(counts, (QStringList{"save tempNumManu=0", "save tempNumVolumes=4", "save tempNumVTBI=0",
                                      "save tempNumTechnicians=1", "save tempNumModels=0", "save tempNumFlowRates=0",
                                      "save tempNumLocations=0", "save tempNumDepartments=0",
                                      "save tempNumPumpTypes=0", "save tempNumPumpTolerances=0"}));
        QCOMPARE(store.calls.mid(kCountSlots, 4),
                 (QStringList{"save FIELD0MANDATORY=False", "save FIELD1MANDATORY=False", "save Technician1=Ann",
                              "delete Technician2"}));
        QCOMPARE(store.calls.mid(kCountSlots + 4, 2),
                 (QStringList{"delete Technician3", "save FIELD2MANDATORY=True"}));
        QCOMPARE(store.calls.mid(store.calls.size() - 3),
                 (QStringList{"save FIELD9MANDATORY=False", "save FIELD10MANDATORY=True", "save password=pw"}));
    }

    // The store is reached in another spelling of application and section
    // than the one the values were written with.
    void load_reads_across_spellings() {
        MemorySettingsStore store;
        store.save_setting("kyt", "Startup", "tempNumFlowRates", "2");
        store.save_setting("kyt", "startup", "FlowRate1", "25");
        store.save_setting("kyt", "startup", "tempNumVolumes", "3");
        store.save_setting("kyt", "startup", "FIELD10MANDATORY", "True");
        const AdminLists a = load_admin_lists({store, "KYT", "STARTUP"});
        QCOMPARE(a.lists[4], (std::vector<std::string>{"25", ""}));
        QCOMPARE(a.list_count[count_slot(4)], std::int16_t(2));
        QCOMPARE(a.list_count[1], std::int16_t(3));
        QVERIFY(a.mandatory[10]);
        QVERIFY(!a.mandatory[1]);
        QVERIFY(a.unreadable_counts.empty());
    }
};

QTEST_APPLESS_MAIN(tst_admin_lists)
#include "tst_admin_lists.moc"
