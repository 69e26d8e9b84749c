// The administrator's form, its lists and ticks as stored, and the password
// gate in front of it with the dialog that sets the password.

#include <QtTest>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QProxyStyle>
#include <QPushButton>
#include <QTimer>

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
    forms::unload<frmPassWord>();
    forms::unload<frmChgPassword>();
    forms::unload<frmSysAd>();
    test::flush_deletes();
}

// The main window, new, with the administration forms reachable by name.
frmMain* main_window() {
    forms::register_form<frmSysAd>();
    forms::register_form<frmPassWord>();
    forms::register_form<frmChgPassword>();
    forms::unload<frmMain>();
    unload_all();
    return forms::get<frmMain>();
}

void choose_sys_admin(frmMain* m) {
    QAction* entry = m->findChild<QAction*>("mnuSysAdmin");
    QVERIFY(entry->isEnabled());
    entry->trigger();
    test::serve_events();
}

void enter_password(const QString& typed) {
    frmPassWord* gate = forms::loaded<frmPassWord>();
    QVERIFY(gate);
    test::show_active(gate);
    test::run_script(gate, {"focus:txtPassword", "type:" + typed, "enter"});
}

// Runs the steps on the modal password dialog once it is up, then lets the
// test look at it if it is still open; the click on "Set Password" that opens it returns when
// the dialog is gone.
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
        // A dialog left open by the steps would never return.
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

    // A list as stored, a few edits, Close: what the store holds afterwards.
    void edits_are_written_on_close_data() {
        QTest::addColumn<int>("list");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QString>("stored_count");  // empty: the number of elements
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<int>("boxes");
        QTest::newRow("five cleared, two added: keys 3 to 5 go")
            << 2 << QStringList{"Al", "Bea", "Cy", "Di", "Ed"} << ""
            << QStringList{"click:cmdClear", "type:Ann", "click:cmdAdd", "type:Bob", "click:cmdAdd"}
            << QStringList{"Ann", "Bob"} << 0;
        QTest::newRow("one removed in the middle shifts the rest")
            << 5 << QStringList{"L1", "L2", "L3", "L4", "L5"} << "" << QStringList{"pick:2", "click:cmdRemove"}
            << QStringList{"L1", "L2", "L4", "L5"} << 0;
        QTest::newRow("remove with nothing picked removes nothing")
            << 0 << QStringList{"Acme", "Baxo"} << "" << QStringList{"click:cmdRemove"} << QStringList{"Acme", "Baxo"}
            << 0;
        QTest::newRow("a picked element typed over is no selection")
            << 0 << QStringList{"Acme", "Baxo"} << "" << QStringList{"pick:1", "type:x", "click:cmdRemove"}
            << QStringList{"Acme", "Baxo"} << 0;
        QTest::newRow("duplicates kept, order of entry")
            << 3 << QStringList{"M2"} << "" << QStringList{"type:M1", "click:cmdAdd", "type:M2", "click:cmdAdd"}
            << QStringList{"M2", "M1", "M2"} << 0;
        QTest::newRow("typed text is not completed from the list")
            << 2 << QStringList{"Anna"} << "" << QStringList{"type:Ann", "click:cmdAdd"} << QStringList{"Anna", "Ann"}
            << 0;
        QTest::newRow("tolerance list takes any text, blanks kept")
            << 8 << QStringList{} << "" << QStringList{"type: five % ", "click:cmdAdd"} << QStringList{" five % "}
            << 0;
        QTest::newRow("numeric list refuses a letter")
            << 4 << QStringList{"25"} << "" << QStringList{"type:x", "click:cmdAdd"} << QStringList{"25"} << 1;
        QTest::newRow("count beyond the elements gives empty entries")
            << 7 << QStringList{"LVP"} << "3" << QStringList{} << QStringList{"LVP", "", ""} << 0;
        QTest::newRow("a count below 0 does not go lower on Remove")
            << 5 << QStringList{} << "-1" << QStringList{"type:L1", "click:cmdAdd", "pick:0", "click:cmdRemove"}
            << QStringList{} << 0;
    }
    void edits_are_written_on_close() {
        QFETCH(int, list);
        QFETCH(QStringList, before);
        QFETCH(QString, stored_count);
        QFETCH(QStringList, steps);
        QFETCH(QStringList, after);
        QFETCH(int, boxes);
        auto t = test::install_test_services();
        t.boxes->expect(std::size_t(boxes));
        const AdminList& l = kAdminLists[static_cast<std::size_t>(list)];
        const int count = stored_count.isEmpty() ? int(before.size()) : stored_count.toInt();
        t.settings->save_setting("KYT", "STARTUP", l.count_key, std::to_string(count));
        for (int n = 1; n <= before.size(); ++n)
            t.settings->save_setting("kyt", "startup", element_key(list, n), ss(before[n - 1]));

        frmSysAd* f = test::open_fresh<frmSysAd>();
        steps.prepend(QString("focus:cmbSysAdData_%1").arg(list));
        test::run_script(f, steps);
        QCOMPARE(f->current_list, list);
        QCOMPARE(int(t.boxes->shown.size()), boxes);
        for (const auto& b : t.boxes->shown) test::expect_box(b, "Invalid entry, entry must be numeric.", 16, "ERROR");
        // The focus is back in the box after each button.
        QCOMPARE(QApplication::focusWidget(), f->findChild<QWidget*>(QString("cmbSysAdData_%1").arg(list)));
        test::run_script(f, {"click:cmdClose"});
        QVERIFY(!forms::is_loaded<frmSysAd>());

        QCOMPARE(qs(stored(t, l.count_key)), QString::number(after.size()));
        for (int n = 1; n <= after.size(); ++n) QCOMPARE(qs(stored(t, element_key(list, n))), after[n - 1]);
        for (int n = int(after.size()) + 1; n <= std::max(count, int(before.size())) + 1; ++n)
            QCOMPARE(stored(t, element_key(list, n)), absent);
    }

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
        // The tick wrote through to the program's flags, and Cancel does not
        // take that back; the next load reads the store again.
        QVERIFY(shared().mandatory[9]);
        f = test::open_fresh<frmSysAd>();
        QCOMPARE(f->findChild<QComboBox*>("cmbSysAdData_0")->count(), 1);
        QVERIFY(!shared().mandatory[9]);
    }

    // "FIELD1MANDATORY" and "FIELD10MANDATORY" are two keys, read and written
    // each for its own box. The count of volumes, which has no box, is kept.
    void mandatory_keys_data() {
        QTest::addColumn<QString>("field1");
        QTest::addColumn<QString>("field10");
        QTest::addColumn<bool>("tick1");
        QTest::addColumn<bool>("tick10");
        QTest::newRow("only the one-digit key") << "True" << "" << true << false;
        QTest::newRow("only the two-digit key") << "" << "True" << false << true;
        QTest::newRow("any case and numbers") << "true" << "-1" << true << true;
        QTest::newRow("text that is no boolean reads false") << "yes" << "0" << false << false;
    }
    void mandatory_keys() {
        QFETCH(QString, field1);
        QFETCH(QString, field10);
        QFETCH(bool, tick1);
        QFETCH(bool, tick10);
        auto t = test::install_test_services();
        if (!field1.isEmpty()) t.settings->save_setting("kyt", "Startup", "FIELD1MANDATORY", ss(field1));
        if (!field10.isEmpty()) t.settings->save_setting("kyt", "Startup", "FIELD10MANDATORY", ss(field10));
        t.settings->save_setting("kyt", "Startup", "tempNumVolumes", "7");
        frmSysAd* f = test::open_fresh<frmSysAd>();
        for (int i = 0; i < kMandatoryCount; ++i) {
            const bool expected = (i == 1 && tick1) || (i == 10 && tick10);
            QCOMPARE(f->findChild<QCheckBox*>(QString("chkMandatory_%1").arg(i))->isChecked(), expected);
            QCOMPARE(shared().mandatory[static_cast<std::size_t>(i)], expected);
        }
        // Swapping the two ticks and closing writes each key as text.
        f->findChild<QCheckBox*>("chkMandatory_1")->click();
        f->findChild<QCheckBox*>("chkMandatory_10")->click();
        test::run_script(f, {"click:cmdClose"});
        QCOMPARE(stored(t, "FIELD1MANDATORY"), std::string(tick1 ? "False" : "True"));
        QCOMPARE(stored(t, "FIELD10MANDATORY"), std::string(tick10 ? "False" : "True"));
        QCOMPARE(stored(t, "FIELD0MANDATORY"), std::string("False"));
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
        QCOMPARE(int(t.boxes->shown.size()), 1);
        QVERIFY(t.boxes->shown[0].text.find("tempNumModels") != std::string::npos);
        QCOMPARE(t.boxes->shown[0].style, 16);
    }

    // The states of the gate, from the menu entry on.
    void gate_data() {
        QTest::addColumn<QString>("required");  // "ispasswordrqd" as stored; "-" absent
        QTest::addColumn<QString>("password");  // "password" as stored; "-" absent
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("opens");
        QTest::newRow("never set: no gate") << "-" << "-" << "" << false << true;
        QTest::newRow("removed: no gate") << "False" << "abc" << "" << false << true;
        QTest::newRow("key absent: built-in code opens") << "True" << "-" << "7305" << true << true;
        QTest::newRow("key absent: other text refused") << "True" << "-" << "1234" << true << false;
        QTest::newRow("key stored: built-in code refused") << "True" << "abc" << "7305" << true << false;
        QTest::newRow("gate on as a number") << "-1" << "abc" << "abc" << true << true;
    }
    void gate() {
        QFETCH(QString, required);
        QFETCH(QString, password);
        QFETCH(QString, typed);
        QFETCH(bool, asked);
        QFETCH(bool, opens);
        auto t = test::install_test_services();
        if (!opens) t.boxes->expect(2);
        if (required != "-") t.settings->save_setting("kyt", "startup", "ispasswordrqd", ss(required));
        if (password != "-") t.settings->save_setting("kyt", "Startup", "password", ss(password));
        frmMain* m = main_window();
        choose_sys_admin(m);
        QCOMPARE(shared().password_required, asked);
        QCOMPARE(forms::is_loaded<frmPassWord>(), asked);
        if (asked) {
            QVERIFY(!forms::is_loaded<frmSysAd>());
            // Each character typed shows as "*", whatever the desktop's style would mask it with.
            auto* entry = forms::loaded<frmPassWord>()->findChild<QLineEdit*>("txtPassword");
            entry->setText("73 5");
            QCOMPARE(entry->displayText(), QString("****"));
            entry->clear();
            enter_password(typed);
        }
        QCOMPARE(forms::is_loaded<frmSysAd>(), opens);
        if (opens) {
            QVERIFY(forms::loaded<frmSysAd>()->isVisible());
            QVERIFY(!forms::is_loaded<frmPassWord>());
            QVERIFY(t.boxes->shown.empty());
        } else {
            QCOMPARE(int(t.boxes->shown.size()), 1);
            test::expect_box(t.boxes->shown[0], "Incorrect Password Entered,\r\nTry Again.", 48, "Incorrect Password");
            QVERIFY(forms::loaded<frmPassWord>()->findChild<QLineEdit*>("txtPassword")->text().isEmpty());
            // Any number of tries; Cancel closes the gate and nothing opens.
            enter_password(typed);
            QCOMPARE(int(t.boxes->shown.size()), 2);
            test::run_script(forms::loaded<frmPassWord>(), {"click:cmdCancel"});
            QVERIFY(!forms::is_loaded<frmPassWord>());
            QVERIFY(!forms::is_loaded<frmSysAd>());
        }
        forms::unload<frmMain>();
        unload_all();
    }

    // Setting the password: what OK or Cancel leaves behind.
    void set_password_data() {
        QTest::addColumn<bool>("gate_on");  // the gate was on when the form opened
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("password");  // the program's password afterwards
        QTest::addColumn<QString>("required");  // "ispasswordrqd" afterwards; "-" absent
        QTest::addColumn<int>("boxes");
        QTest::newRow("typed twice, Enter, OK")
            << false << QStringList{"type:abc", "enter", "type:abc", "enter", "click:CmdOK"} << "abc" << "True" << 0;
        QTest::newRow("entries differ: told, and OK changes nothing")
            << false << QStringList{"type:abc", "enter", "type:abd", "enter", "press:CmdOK"} << "" << "-" << 1;
        QTest::newRow("differ on leaving for OK: told, and the click is lost")
            << false << QStringList{"type:abc", "enter", "type:abd", "click:CmdOK"} << "" << "-" << 1;
        QTest::newRow("a key after the match undoes it")
            << false << QStringList{"type:abc", "enter", "type:abc", "enter", "left", "press:CmdOK"} << "" << "-" << 0;
        QTest::newRow("the new password is the first box, taken on leaving it")
            << false << QStringList{"type:ab", "tab", "type:ab", "enter", "focus:txtSetPassword", "type:c",
                                    "focus:txtConfPassw", "type:c", "enter", "click:CmdOK"}
            << "abc" << "True" << 0;
        QTest::newRow("Cancel after a match") << false
                                              << QStringList{"type:abc", "enter", "type:abc", "enter", "click:cmdCancel"}
                                              << "" << "-" << 0;
        QTest::newRow("change with the gate on: the key is not written again")
            << true << QStringList{"type:new", "enter", "type:new", "enter", "click:CmdOK"} << "new" << "-" << 0;
    }
    void set_password() {
        QFETCH(bool, gate_on);
        QFETCH(QStringList, steps);
        QFETCH(QString, password);
        QFETCH(QString, required);
        QFETCH(int, boxes);
        auto t = test::install_test_services();
        t.boxes->expect(std::size_t(boxes));
        unload_all();
        shared().password_required = gate_on;
        frmSysAd* admin = test::open_fresh<frmSysAd>();
        QCOMPARE(admin->findChild<QPushButton*>("cmdSetPassword")->text(),
                 QString(gate_on ? "Change Password" : "Set Password"));
        QString left_in_box;  // in the confirmation box, when the steps leave the dialog open
        set_password_with(admin, steps, [&](frmChgPassword* dlg) {
            // Unlike the gate's box, the two boxes show what is typed.
            for (auto* box : dlg->findChildren<QLineEdit*>()) QCOMPARE(box->echoMode(), QLineEdit::Normal);
            left_in_box = dlg->findChild<QLineEdit*>("txtConfPassw")->text();
        });
        QCOMPARE(left_in_box, QString());  // a mismatch empties it
        // The form's lists and the password were saved before the dialog.
        QCOMPARE(stored(t, "password"), std::string(""));
        QCOMPARE(stored(t, "tempNumManu"), std::string("0"));
        QCOMPARE(qs(shared().password), password);
        QCOMPARE(qs(stored(t, "ispasswordrqd")), required == "-" ? qs(absent) : required);
        QCOMPARE(shared().password_required, gate_on || required == "True");
        QCOMPARE(int(t.boxes->shown.size()), boxes);
        if (boxes) {
            test::expect_box(t.boxes->shown[0], "Password entered is not confirmed,\r\nplease retry.", 48,
                             "Confirmation Error");
        }
        // Back on a new administrator form that shows the gate's state.
        QVERIFY(!forms::is_loaded<frmChgPassword>());
        frmSysAd* again = forms::loaded<frmSysAd>();
        QVERIFY(again && again != admin && again->isVisible());
        QCOMPARE(again->findChild<QPushButton*>("cmdRemovePassword")->isEnabled(), shared().password_required);
        unload_all();
    }

    // The first password of all: Set Password has already stored the empty
    // text, so a Cancel on the form after OK leaves the gate opening on an
    // empty entry; Close writes the new password. Past the gate, Remove
    // Password turns the gate off and keeps the password; Close then writes
    // the one the gate read.
    void first_password_data() {
        QTest::addColumn<QString>("leave_by");
        QTest::addColumn<QString>("password");
        QTest::newRow("Cancel keeps the empty text") << "cmdCancel" << "";
        QTest::newRow("Close writes the new one") << "cmdClose" << "abc";
    }
    void first_password() {
        QFETCH(QString, leave_by);
        QFETCH(QString, password);
        auto t = test::install_test_services();
        t.boxes->expect();
        frmMain* m = main_window();
        choose_sys_admin(m);
        set_password_with(forms::loaded<frmSysAd>(), {"type:abc", "enter", "type:abc", "enter", "click:CmdOK"});
        test::run_script(forms::loaded<frmSysAd>(), {"click:" + leave_by});
        QCOMPARE(stored(t, "ispasswordrqd"), std::string("True"));
        QCOMPARE(qs(stored(t, "password")), password);

        choose_sys_admin(m);
        enter_password(password.isEmpty() ? "abc" : "");
        QVERIFY(!forms::is_loaded<frmSysAd>());
        enter_password(password);
        frmSysAd* admin = forms::loaded<frmSysAd>();
        QVERIFY(admin);
        auto* remove = admin->findChild<QPushButton*>("cmdRemovePassword");
        QVERIFY(remove->isEnabled());
        test::run_script(admin, {"click:cmdRemovePassword"});
        QCOMPARE(stored(t, "ispasswordrqd"), std::string("False"));
        QVERIFY(!shared().password_required && !remove->isEnabled());
        QCOMPARE(admin->findChild<QPushButton*>("cmdSetPassword")->text(), QString("Set Password"));
        test::run_script(admin, {"click:cmdClose"});
        QCOMPARE(qs(stored(t, "password")), password);
        forms::unload<frmMain>();
        unload_all();
    }
};

QTEST_MAIN(tst_sysad)
#include "tst_sysad.moc"
