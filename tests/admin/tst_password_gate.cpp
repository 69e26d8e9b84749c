#include <QtTest>

#include <QAction>
#include <QLineEdit>
#include <QProxyStyle>
#include <QPushButton>
#include <QTimer>

#include <functional>

#include "support/form_script.h"
#include "admin/frmChgPassword.h"
#include "admin/frmPassWord.h"
#include "admin/frmSysAd.h"
#include "app/frmMain.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

const std::string absent = "<absent>";

std::string stored(test::TestServices& t, std::string_view key) {
    return t.settings->get_setting("kyt", "Startup", key, absent);
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
// test look at it; the click on "Set Password" that opens it returns when
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
        if (look) look(dlg);
        // A dialog left open by the steps would never return.
        if (forms::is_loaded<frmChgPassword>()) dlg->findChild<QPushButton*>("cmdCancel")->click();
    });
    admin->findChild<QPushButton*>("cmdSetPassword")->click();
    QVERIFY(ran);
}

}  // namespace

class tst_password_gate : public QObject {
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
        QTest::newRow("key absent: empty refused") << "True" << "-" << "" << true << false;
        QTest::newRow("key stored: built-in code refused") << "True" << "abc" << "7305" << true << false;
        QTest::newRow("key stored: the password opens") << "True" << "Secret" << "Secret" << true << true;
        QTest::newRow("differs only in case") << "True" << "Secret" << "secret" << true << false;
        QTest::newRow("blank behind is another password") << "True" << "Secret" << "Secret " << true << false;
        QTest::newRow("stored empty: Enter on empty opens") << "True" << "" << "" << true << true;
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
        QTest::newRow("confirmed by leaving the box")
            << false << QStringList{"type:abc", "enter", "type:abc", "tab", "click:CmdOK"} << "abc" << "True" << 0;
        QTest::newRow("OK straight from the confirmation box compares first")
            << false << QStringList{"type:abc", "enter", "type:abc", "click:CmdOK"} << "abc" << "True" << 0;
        QTest::newRow("both empty, Enter in the second: empty password, gate on")
            << false << QStringList{"tab", "enter", "click:CmdOK"} << "" << "True" << 0;
        QTest::newRow("entries differ: told, and OK changes nothing")
            << false << QStringList{"type:abc", "enter", "type:abd", "enter", "press:CmdOK"} << "" << "-" << 1;
        QTest::newRow("differ on leaving for OK: told, and the click is lost")
            << false << QStringList{"type:abc", "enter", "type:abd", "click:CmdOK"} << "" << "-" << 1;
        QTest::newRow("a key after the match undoes it")
            << false << QStringList{"type:abc", "enter", "type:abc", "enter", "left", "press:CmdOK"} << "" << "-" << 0;
        QTest::newRow("retyped to the same text, still undone")
            << false << QStringList{"type:abc", "enter", "type:abc", "enter", "backspace", "type:c", "press:CmdOK"}
            << "" << "-" << 0;
        QTest::newRow("undone, then matched again by Enter")
            << false << QStringList{"type:abc", "enter", "type:abc", "enter", "left", "enter", "press:CmdOK"}
            << "abc" << "True" << 0;
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
        set_password_with(admin, steps);
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

    // Unlike the gate's box, the two boxes show what is typed.
    void mismatch_clears_the_confirmation_box() {
        auto t = test::install_test_services();
        t.boxes->expect();
        unload_all();
        QString left_in_box = "?";
        bool masked = true;
        set_password_with(test::open_fresh<frmSysAd>(), {"type:abc", "enter", "type:xyz", "enter"},
                          [&](frmChgPassword* dlg) {
                              left_in_box = dlg->findChild<QLineEdit*>("txtConfPassw")->text();
                              masked = dlg->findChild<QLineEdit*>("txtSetPassword")->echoMode() != QLineEdit::Normal ||
                                       dlg->findChild<QLineEdit*>("txtConfPassw")->echoMode() != QLineEdit::Normal;
                          });
        QCOMPARE(left_in_box, QString());
        QVERIFY(!masked);
        QCOMPARE(int(t.boxes->shown.size()), 1);
        unload_all();
    }

    // The first password of all: Set Password has already stored the empty
    // text, so after OK and a Cancel on the form the gate is on and opens on
    // an empty entry, not on the password typed.
    void first_password_left_by_cancel() {
        auto t = test::install_test_services();
        t.boxes->expect();
        frmMain* m = main_window();
        choose_sys_admin(m);
        set_password_with(forms::loaded<frmSysAd>(), {"type:abc", "enter", "type:abc", "enter", "click:CmdOK"});
        test::run_script(forms::loaded<frmSysAd>(), {"click:cmdCancel"});
        QCOMPARE(stored(t, "ispasswordrqd"), std::string("True"));
        QCOMPARE(stored(t, "password"), std::string(""));

        choose_sys_admin(m);
        enter_password("abc");
        QVERIFY(!forms::is_loaded<frmSysAd>());
        enter_password("");
        QVERIFY(forms::is_loaded<frmSysAd>());
        // Closed this time: the password in hand is the one the gate read.
        test::run_script(forms::loaded<frmSysAd>(), {"click:cmdClose"});
        QCOMPARE(stored(t, "password"), std::string(""));
        forms::unload<frmMain>();
        unload_all();
    }

    void first_password_kept_by_close() {
        auto t = test::install_test_services();
        unload_all();
        set_password_with(test::open_fresh<frmSysAd>(), {"type:abc", "enter", "type:abc", "enter", "click:CmdOK"});
        test::run_script(forms::loaded<frmSysAd>(), {"click:cmdClose"});
        QCOMPARE(stored(t, "password"), std::string("abc"));
        unload_all();
    }

    void remove_password() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "password", "abc");
        t.settings->save_setting("kyt", "startup", "ispasswordrqd", "True");
        unload_all();
        shared().password_required = true;
        frmSysAd* admin = test::open_fresh<frmSysAd>();
        auto* remove = admin->findChild<QPushButton*>("cmdRemovePassword");
        QVERIFY(remove->isEnabled());
        test::run_script(admin, {"click:cmdRemovePassword"});
        QCOMPARE(stored(t, "ispasswordrqd"), std::string("False"));
        QVERIFY(!shared().password_required);
        QVERIFY(!remove->isEnabled());
        QCOMPARE(admin->findChild<QPushButton*>("cmdSetPassword")->text(), QString("Set Password"));
        QCOMPARE(stored(t, "password"), std::string("abc"));
        unload_all();
    }
};

QTEST_MAIN(tst_password_gate)
#include "tst_password_gate.moc"
