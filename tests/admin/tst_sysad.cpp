// The administrator's form, its lists and ticks as stored, and the password gate.

#include <QtTest>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QProxyStyle>
#include <QPushButton>

#include <functional>

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

// The bytes on disk, once the store has written what it holds.
QByteArray settings_file(test::TestServices& t) {
    t.settings->flush();
    QFile f(t.settings->file_for("kyt"));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
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

// Runs the steps on the modal dialog that "Set Password" opens; `look` sees
// the dialog if the steps leave it open.
void set_password_with(frmSysAd* admin, const QStringList& steps,
                       const std::function<void(frmChgPassword*)>& look = {}) {
    bool ran = false;
    QTimer::singleShot(0, [&] {
        frmChgPassword* dlg = forms::loaded<frmChgPassword>();
        if (!dlg) return;
        ran = true;
        test::show_active(dlg);
        test::run_script(dlg, QStringList{"focus:txtSetPassword"} + steps);
        if (look && forms::is_loaded<frmChgPassword>()) look(dlg);
        if (forms::is_loaded<frmChgPassword>()) dlg->findChild<QPushButton*>("cmdCancel")->click();
    });
    admin->findChild<QPushButton*>("cmdSetPassword")->click();
    QVERIFY(ran);
}

}  // namespace

class tst_sysad : public QObject {
    Q_OBJECT
private slots:
    // A desktop style that masks passwords with a round bullet, as many do.
    void initTestCase() {
        struct BulletStyle : QProxyStyle {
            int styleHint(StyleHint hint, const QStyleOption* o, const QWidget* w, QStyleHintReturn* r) const override {
                if (hint == SH_LineEdit_PasswordCharacter) return 0x25CF;
                return QProxyStyle::styleHint(hint, o, w, r);
            }
        };
        QApplication::setStyle(new BulletStyle);
    }
    void cleanup() { unload_all(); }

    // A list as stored, a few edits, Close: what the store holds afterwards.
    void edits_are_written_on_close_data() {
        QTest::addColumn<int>("list");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QString>("stored_count");  // empty: the number of elements
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("five cleared, two added: keys 3 to 5 go")
            << 2 << QStringList{"Al", "Bea", "Cy", "Di", "Ed"} << ""
            << QStringList{"click:cmdClear", "type:Ann", "click:cmdAdd", "type:Bob", "click:cmdAdd"}
            << QStringList{"Ann", "Bob"};
        QTest::newRow("one removed in the middle shifts the rest")
            << 5 << QStringList{"L1", "L2", "L3", "L4", "L5"} << "" << QStringList{"pick:2", "click:cmdRemove"}
            << QStringList{"L1", "L2", "L4", "L5"};
        QTest::newRow("a picked element typed over is no selection")
            << 0 << QStringList{"Acme", "Baxo"} << "" << QStringList{"pick:1", "type:x", "click:cmdRemove"}
            << QStringList{"Acme", "Baxo"};
        QTest::newRow("typed text is not completed from the list, duplicates kept")
            << 2 << QStringList{"Anna"} << "" << QStringList{"type:Ann", "click:cmdAdd", "type:Anna", "click:cmdAdd"}
            << QStringList{"Anna", "Ann", "Anna"};
        QTest::newRow("numeric list refuses a letter")
            << 4 << QStringList{"25"} << "" << QStringList{"type:x", "click:cmdAdd"} << QStringList{"25"};
        QTest::newRow("count beyond the elements gives empty entries")
            << 7 << QStringList{"LVP"} << "3" << QStringList{} << QStringList{"LVP", "", ""};
        QTest::newRow("a count below 0 does not go lower on Remove")
            << 5 << QStringList{} << "-1" << QStringList{"type:L1", "click:cmdAdd", "pick:0", "click:cmdRemove"}
            << QStringList{};
    }
    void edits_are_written_on_close() {
        QFETCH(int, list);
        QFETCH(QStringList, before);
        QFETCH(QString, stored_count);
        QFETCH(QStringList, steps);
        QFETCH(QStringList, after);
        auto t = test::install_test_services();
        const bool refused = list == 4 && steps.contains("type:x");
        t.boxes->expect(refused ? 1 : 0);
        const AdminList& l = kAdminLists[static_cast<std::size_t>(list)];
        const int count = stored_count.isEmpty() ? int(before.size()) : stored_count.toInt();
        t.settings->save_setting("KYT", "STARTUP", l.count_key, std::to_string(count));
        for (int n = 1; n <= before.size(); ++n)
            t.settings->save_setting("kyt", "startup", element_key(list, n), ss(before[n - 1]));

        frmSysAd* f = test::open_fresh<frmSysAd>();
        const QString box = QString("cmbSysAdData_%1").arg(list);
        test::run_script(f, QStringList{"focus:" + box} + steps);
        QCOMPARE(t.boxes->shown.size(), std::size_t(refused ? 1 : 0));
        if (refused) test::expect_box(t.boxes->shown[0], "Invalid entry, entry must be numeric.", 16, "ERROR");
        // The focus is back in the box after each button.
        QCOMPARE(QApplication::focusWidget(), f->findChild<QWidget*>(box));
        test::run_script(f, {"click:cmdClose"});
        QVERIFY(!forms::is_loaded<frmSysAd>());

        QCOMPARE(qs(stored(t, l.count_key)), QString::number(after.size()));
        for (int n = 1; n <= after.size(); ++n) QCOMPARE(qs(stored(t, element_key(list, n))), after[n - 1]);
        for (int n = int(after.size()) + 1; n <= std::max(count, int(before.size())) + 1; ++n)
            QCOMPARE(stored(t, element_key(list, n)), absent);
    }

    // Cancel writes nothing; a tick reaches the program's flags at once and
    // stays there until the next load reads the store again.
    void cancel_after_add_leaves_the_store_as_it_was() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "tempNumManu", "1");
        t.settings->save_setting("kyt", "Startup", "Manufacturer1", "Acme");
        const QByteArray before = settings_file(t);
        frmSysAd* f = test::open_fresh<frmSysAd>();
        test::run_script(f, {"focus:cmbSysAdData_0", "type:Baxo", "click:cmdAdd", "click:chkMandatory_9",
                             "click:cmdCancel"});
        QVERIFY(!forms::is_loaded<frmSysAd>());
        QCOMPARE(settings_file(t), before);
        QVERIFY(shared().mandatory[9]);
        f = test::open_fresh<frmSysAd>();
        QCOMPARE(f->findChild<QComboBox*>("cmbSysAdData_0")->count(), 1);
        QVERIFY(!shared().mandatory[9]);
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

    void count_out_of_range_is_told_and_the_list_is_empty() {
        auto t = test::install_test_services();
        t.boxes->expect();
        t.settings->save_setting("kyt", "Startup", "tempNumModels", "40000");
        t.settings->save_setting("kyt", "Startup", "Model1", "M1");
        frmSysAd* f = test::open_fresh<frmSysAd>();
        QCOMPARE(f->findChild<QComboBox*>("cmbSysAdData_3")->count(), 0);
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        QVERIFY(t.boxes->shown[0].text.find("tempNumModels") != std::string::npos);
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
            // Each character shows as "*", whatever the desktop's style would mask it with.
            auto* entry = forms::loaded<frmPassWord>()->findChild<QLineEdit*>("txtPassword");
            entry->setText("73 5");
            QCOMPARE(entry->displayText(), QString("****"));
            entry->clear();
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

    // Setting the password: what the dialog leaves behind.
    void set_password_data() {
        QTest::addColumn<bool>("gate_on");  // the gate was on when the form opened
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("password");  // the program's password afterwards
        QTest::addColumn<QString>("required");  // "ispasswordrqd" afterwards; "-" absent
        QTest::newRow("typed twice, Enter, OK")
            << false << QStringList{"type:abc", "enter", "type:abc", "enter", "click:CmdOK"} << "abc" << "True";
        QTest::newRow("entries differ: told, and OK changes nothing")
            << false << QStringList{"type:abc", "enter", "type:abd", "enter", "press:CmdOK"} << "" << "-";
        QTest::newRow("a key after the match undoes it")
            << false << QStringList{"type:abc", "enter", "type:abc", "enter", "left", "press:CmdOK"} << "" << "-";
        QTest::newRow("change with the gate on: the key is not written again")
            << true << QStringList{"type:new", "enter", "type:new", "enter", "click:CmdOK"} << "new" << "-";
    }
    void set_password() {
        QFETCH(bool, gate_on);
        QFETCH(QStringList, steps);
        QFETCH(QString, password);
        QFETCH(QString, required);
        auto t = test::install_test_services();
        const bool mismatch = steps.contains("type:abd");
        t.boxes->expect(mismatch ? 1 : 0);
        shared().password_required = gate_on;
        frmSysAd* admin = test::open_fresh<frmSysAd>();
        QCOMPARE(admin->findChild<QPushButton*>("cmdSetPassword")->text(),
                 QString(gate_on ? "Change Password" : "Set Password"));
        QString left_in_box;  // a mismatch empties the confirmation box
        set_password_with(admin, steps,
                          [&](frmChgPassword* dlg) { left_in_box = dlg->findChild<QLineEdit*>("txtConfPassw")->text(); });
        QCOMPARE(left_in_box, QString());
        // The form's lists and the password were saved before the dialog.
        QCOMPARE(stored(t, "password"), std::string(""));
        QCOMPARE(stored(t, "tempNumManu"), std::string("0"));
        QCOMPARE(qs(shared().password), password);
        QCOMPARE(qs(stored(t, "ispasswordrqd")), required == "-" ? qs(absent) : required);
        QCOMPARE(shared().password_required, gate_on || required == "True");
        QCOMPARE(t.boxes->shown.size(), std::size_t(mismatch ? 1 : 0));
        if (mismatch)
            test::expect_box(t.boxes->shown[0], "Password entered is not confirmed,\r\nplease retry.", 48,
                             "Confirmation Error");
        // Back on a new administrator form that shows the gate's state.
        frmSysAd* again = forms::loaded<frmSysAd>();
        QVERIFY(again && again != admin && again->isVisible() && !forms::is_loaded<frmChgPassword>());
        QCOMPARE(again->findChild<QPushButton*>("cmdRemovePassword")->isEnabled(), shared().password_required);
        if (password != "abc") return;
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
