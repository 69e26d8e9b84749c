// The administrator's form, its lists and ticks as stored, and the password gate.

#include <QtTest>

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

#include "admin/admin_lists.h"
#include "admin/frmChgPassword.h"
#include "admin/frmPassWord.h"
#include "admin/frmSysAd.h"
#include "app/frmMain.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

const std::string absent = "<absent>";

std::string stored(test::TestServices& t, std::string_view key) {
    return t.settings->get_setting("kyt", "Startup", key, absent);
}

void unload_all() {
    forms::unload<frmMain>();
    forms::unload<frmPassWord>();
    forms::unload<frmChgPassword>();
    forms::unload<frmSysAd>();
    test::flush_deletes();
}

// A new main window, with Options, System Administration chosen on it.
void choose_sys_admin() {
    forms::register_form<frmSysAd>();
    forms::register_form<frmPassWord>();
    forms::register_form<frmChgPassword>();
    forms::get<frmMain>()->findChild<QAction*>("mnuSysAdmin")->trigger();
    test::serve_events();
}

void enter_password(const QString& typed) {
    frmPassWord* gate = forms::loaded<frmPassWord>();
    QVERIFY(gate);
    test::show_active(gate);
    test::run_script(gate, {"focus:txtPassword", "type:" + typed, "enter"});
}

// Types `password` twice in the dialog that the Set Password button opens, then OK.
void set_password_with(frmSysAd* admin, const QString& password) {
    bool ran = false;
    QTimer::singleShot(0, [&] {
        frmChgPassword* dlg = forms::loaded<frmChgPassword>();
        if (!dlg) return;
        ran = true;
        test::show_active(dlg);
        test::run_script(dlg, {"focus:txtSetPassword", "type:" + password, "enter", "type:" + password, "enter",
                               "click:CmdOK"});
        if (forms::is_loaded<frmChgPassword>()) dlg->findChild<QPushButton*>("cmdCancel")->click();
    });
    admin->findChild<QPushButton*>("cmdSetPassword")->click();
    QVERIFY(ran);
}

}  // namespace

class tst_sysad : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { unload_all(); }

    // A list as stored, a few edits, Close: what the store holds afterwards.
    void edits_are_written_on_close_data() {
        QTest::addColumn<int>("list");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QString>("stored_count");  // empty: the number of elements
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<QString>("told");  // an error box's text, if any
        QTest::newRow("five cleared, two added: keys 3 to 5 go")
            << 2 << QStringList{"Al", "Bea", "Cy", "Di", "Ed"} << ""
            << QStringList{"click:cmdClear", "type:Ann", "click:cmdAdd", "type:Bob", "click:cmdAdd"}
            << QStringList{"Ann", "Bob"} << "";
        QTest::newRow("one removed in the middle shifts the rest")
            << 5 << QStringList{"L1", "L2", "L3", "L4", "L5"} << "" << QStringList{"pick:2", "click:cmdRemove"}
            << QStringList{"L1", "L2", "L4", "L5"} << "";
        QTest::newRow("typed text is not completed from the list, duplicates kept")
            << 2 << QStringList{"Anna"} << "" << QStringList{"type:Ann", "click:cmdAdd", "type:Anna", "click:cmdAdd"}
            << QStringList{"Anna", "Ann", "Anna"} << "";
        QTest::newRow("numeric list refuses a letter") << 4 << QStringList{"25"} << "" << QStringList{"type:x", "click:cmdAdd"}
                                                       << QStringList{"25"} << "Invalid entry, entry must be numeric.";
        QTest::newRow("count beyond the elements gives empty entries")
            << 7 << QStringList{"LVP"} << "3" << QStringList{} << QStringList{"LVP", "", ""} << "";
        QTest::newRow("a count below 0 does not go lower on Remove")
            << 5 << QStringList{} << "-1" << QStringList{"type:L1", "click:cmdAdd", "pick:0", "click:cmdRemove"}
            << QStringList{} << "";
        QTest::newRow("a count out of range is told, the list empty")
            << 3 << QStringList{} << "40000" << QStringList{} << QStringList{}
            << "The stored count \"tempNumModels\" is not a list size; that list is shown empty.";
    }
    void edits_are_written_on_close() {
        QFETCH(int, list);
        QFETCH(QStringList, before);
        QFETCH(QString, stored_count);
        QFETCH(QStringList, steps);
        QFETCH(QStringList, after);
        QFETCH(QString, told);
        auto t = test::install_test_services();
        t.boxes->expect(told.isEmpty() ? 0 : 1);
        const AdminList& l = kAdminLists[static_cast<std::size_t>(list)];
        const int count = stored_count.isEmpty() ? int(before.size()) : stored_count.toInt();
        t.settings->save_setting("KYT", "STARTUP", l.count_key, std::to_string(count));
        for (int n = 1; n <= before.size(); ++n)
            t.settings->save_setting("kyt", "startup", element_key(list, n), ss(before[n - 1]));

        frmSysAd* f = test::open_fresh<frmSysAd>();
        const QString box = QString("cmbSysAdData_%1").arg(list);
        test::run_script(f, QStringList{"focus:" + box} + steps);
        QCOMPARE(t.boxes->shown.size(), std::size_t(told.isEmpty() ? 0 : 1));
        if (!told.isEmpty()) test::expect_box(t.boxes->shown[0], ss(told), 16, "ERROR");
        // The focus is back in the box after each button.
        QCOMPARE(QApplication::focusWidget(), f->findChild<QWidget*>(box));
        test::run_script(f, {"click:cmdClose"});
        QVERIFY(!forms::is_loaded<frmSysAd>());

        QCOMPARE(qs(stored(t, l.count_key)), QString::number(after.size()));
        for (int n = 1; n <= after.size(); ++n) QCOMPARE(qs(stored(t, element_key(list, n))), after[n - 1]);
        for (int n = int(after.size()) + 1; n <= std::clamp(count, int(before.size()), 9) + 1; ++n)
            QCOMPARE(stored(t, element_key(list, n)), absent);
    }

    // "FIELD1MANDATORY" and "FIELD10MANDATORY" are two keys, each read and
    // written for its own box; the count of volumes, which has no box, is kept.
    void mandatory_keys() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "FIELD10MANDATORY", "-1");
        t.settings->save_setting("kyt", "Startup", "tempNumVolumes", "7");
        frmSysAd* f = test::open_fresh<frmSysAd>();
        for (int i = 0; i < kMandatoryCount; ++i) {
            QCOMPARE(f->findChild<QCheckBox*>(QString("chkMandatory_%1").arg(i))->isChecked(), i == 10);
            QCOMPARE(shared().mandatory[static_cast<std::size_t>(i)], i == 10);
        }
        f->findChild<QCheckBox*>("chkMandatory_1")->click();
        f->findChild<QCheckBox*>("chkMandatory_10")->click();
        test::run_script(f, {"click:cmdClose"});
        QCOMPARE(stored(t, "FIELD1MANDATORY"), std::string("True"));
        QCOMPARE(stored(t, "FIELD10MANDATORY"), std::string("False"));
        QCOMPARE(stored(t, "FIELD9MANDATORY"), std::string("False"));
        QCOMPARE(stored(t, "tempNumVolumes"), std::string("7"));
    }

    // The states of the gate, from the menu entry on; a refused entry may be
    // tried again, and Cancel opens nothing.
    void gate_data() {
        QTest::addColumn<QString>("required");  // "ispasswordrqd" as stored; "-" absent
        QTest::addColumn<QString>("password");  // "password" as stored; "-" absent
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("opens");
        QTest::newRow("never set: no gate") << "-" << "-" << "" << true;
        QTest::newRow("key absent: built-in code opens") << "True" << "-" << "7305" << true;
        QTest::newRow("key absent: other text refused") << "True" << "-" << "1234" << false;
        QTest::newRow("key stored: it opens") << "True" << "abc" << "abc" << true;
        QTest::newRow("key stored: built-in code refused") << "True" << "abc" << "7305" << false;
    }
    void gate() {
        QFETCH(QString, required);
        QFETCH(QString, password);
        QFETCH(QString, typed);
        QFETCH(bool, opens);
        auto t = test::install_test_services();
        if (!opens) t.boxes->expect(2);
        if (required != "-") t.settings->save_setting("kyt", "startup", "ispasswordrqd", ss(required));
        if (password != "-") t.settings->save_setting("kyt", "Startup", "password", ss(password));
        choose_sys_admin();
        const bool asked = required != "-";
        QCOMPARE(shared().password_required, asked);
        QCOMPARE(forms::is_loaded<frmPassWord>(), asked);
        if (asked) {
            QVERIFY(!forms::is_loaded<frmSysAd>());
            enter_password(typed);
        }
        QCOMPARE(forms::is_loaded<frmSysAd>(), opens);
        if (opens) {
            QVERIFY(t.boxes->shown.empty() && !forms::is_loaded<frmPassWord>());
            return;
        }
        test::expect_box(t.boxes->shown[0], "Incorrect Password Entered,\r\nTry Again.", 48, "Incorrect Password");
        QVERIFY(forms::loaded<frmPassWord>()->findChild<QLineEdit*>("txtPassword")->text().isEmpty());
        enter_password(typed);
        QCOMPARE(t.boxes->shown.size(), std::size_t(2));
        test::run_script(forms::loaded<frmPassWord>(), {"click:cmdCancel"});
        QVERIFY(!forms::is_loaded<frmPassWord>() && !forms::is_loaded<frmSysAd>());
    }

    // Setting the password (typed twice, Enter, OK); with the gate on already
    // "ispasswordrqd" is not written again.
    void set_password_data() {
        QTest::addColumn<bool>("gate_on");  // the gate was on when the form opened
        QTest::newRow("set") << false;
        QTest::newRow("change with the gate on") << true;
    }
    void set_password() {
        QFETCH(bool, gate_on);
        const QString password = gate_on ? "new" : "abc";
        auto t = test::install_test_services();
        shared().password_required = gate_on;
        frmSysAd* admin = test::open_fresh<frmSysAd>();
        QCOMPARE(admin->findChild<QPushButton*>("cmdSetPassword")->text(),
                 QString(gate_on ? "Change Password" : "Set Password"));
        set_password_with(admin, password);
        QCOMPARE(qs(shared().password), password);
        QCOMPARE(stored(t, "ispasswordrqd"), gate_on ? absent : std::string("True"));
        QVERIFY(shared().password_required && t.boxes->shown.empty());
        // Back on a new administrator form that shows the gate's state.
        frmSysAd* again = forms::loaded<frmSysAd>();
        QVERIFY(again && again != admin && again->isVisible() && !forms::is_loaded<frmChgPassword>());
        QCOMPARE(again->findChild<QPushButton*>("cmdRemovePassword")->isEnabled(), shared().password_required);
        if (gate_on) return;
        // Close writes the password; Remove Password turns the gate off and keeps it.
        test::run_script(again, {"click:cmdClose"});
        QCOMPARE(stored(t, "password"), std::string("abc"));
        frmSysAd* admin2 = test::open_fresh<frmSysAd>();
        test::run_script(admin2, {"click:cmdRemovePassword"});
        QCOMPARE(stored(t, "ispasswordrqd"), std::string("False"));
        QVERIFY(!shared().password_required && !admin2->findChild<QPushButton*>("cmdRemovePassword")->isEnabled());
        test::run_script(admin2, {"click:cmdClose"});
        QCOMPARE(stored(t, "password"), std::string("abc"));
    }
};

QTEST_MAIN(tst_sysad)
#include "tst_sysad.moc"
