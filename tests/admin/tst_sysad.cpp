#include <QtTest>

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QPushButton>

#include "admin/admin_lists.h"
#include "support/form_script.h"
#include "admin/frmSysAd.h"
#include "common/forms.h"
#include "common/qt_text.h"
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

frmSysAd* open_sys_ad() { return test::open_fresh<frmSysAd>(); }

}  // namespace

class tst_sysad : public QObject {
    Q_OBJECT
private slots:
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
        QTest::newRow("the first element added to an empty list is not selected")
            << 0 << QStringList{} << "" << QStringList{"type:Acme", "click:cmdAdd", "click:cmdRemove"}
            << QStringList{"Acme"} << 0;
        QTest::newRow("typing an element's text again is no selection")
            << 0 << QStringList{} << "" << QStringList{"type:Acme", "click:cmdAdd", "type:Acme", "click:cmdRemove"}
            << QStringList{"Acme"} << 0;
        QTest::newRow("duplicates kept, order of entry")
            << 3 << QStringList{"M2"} << "" << QStringList{"type:M1", "click:cmdAdd", "type:M2", "click:cmdAdd"}
            << QStringList{"M2", "M1", "M2"} << 0;
        QTest::newRow("typed text is not completed from the list")
            << 2 << QStringList{"Anna"} << "" << QStringList{"type:Ann", "click:cmdAdd"} << QStringList{"Anna", "Ann"}
            << 0;
        QTest::newRow("tolerance list takes any text, blanks kept")
            << 8 << QStringList{} << "" << QStringList{"type: five % ", "click:cmdAdd"} << QStringList{" five % "}
            << 0;
        QTest::newRow("empty text added to a list that is not numeric")
            << 6 << QStringList{"Ward"} << "" << QStringList{"click:cmdAdd"} << QStringList{"Ward", ""} << 0;
        QTest::newRow("numeric list takes blanks, sign and exponent")
            << 1 << QStringList{} << "" << QStringList{"type: -1.5E2 ", "click:cmdAdd"} << QStringList{" -1.5E2 "}
            << 0;
        QTest::newRow("numeric list refuses a letter")
            << 4 << QStringList{"25"} << "" << QStringList{"type:x", "click:cmdAdd"} << QStringList{"25"} << 1;
        QTest::newRow("numeric list refuses empty text")
            << 1 << QStringList{} << "" << QStringList{"click:cmdAdd"} << QStringList{} << 1;
        QTest::newRow("numeric list refuses two rates")
            << 4 << QStringList{} << "" << QStringList{"type:25 50", "click:cmdAdd"} << QStringList{} << 1;
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

        frmSysAd* f = open_sys_ad();
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
        frmSysAd* f = open_sys_ad();
        test::run_script(f, {"focus:cmbSysAdData_0", "type:Baxo", "click:cmdAdd", "click:chkMandatory_9",
                             "click:cmdCancel"});
        QVERIFY(!forms::is_loaded<frmSysAd>());
        QCOMPARE(settings_file(t), before);
        // The tick wrote through to the program's flags, and Cancel does not
        // take that back; the next load reads the store again.
        QVERIFY(shared().mandatory[9]);
        f = open_sys_ad();
        QCOMPARE(f->findChild<QComboBox*>("cmbSysAdData_0")->count(), 1);
        QVERIFY(!shared().mandatory[9]);
    }

    // "FIELD1MANDATORY" and "FIELD10MANDATORY" are two keys, read and written
    // each for its own box.
    void mandatory_keys_data() {
        QTest::addColumn<QString>("field1");
        QTest::addColumn<QString>("field10");
        QTest::addColumn<bool>("tick1");
        QTest::addColumn<bool>("tick10");
        QTest::newRow("only the one-digit key") << "True" << "" << true << false;
        QTest::newRow("only the two-digit key") << "" << "True" << false << true;
        QTest::newRow("both, opposite") << "False" << "True" << false << true;
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
        frmSysAd* f = open_sys_ad();
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
    }

    void close_keeps_the_volume_count_and_writes_the_password() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "tempNumVolumes", "7");
        t.settings->save_setting("kyt", "Startup", "password", "old");
        shared().password = "";  // the gate was not asked in this run
        frmSysAd* f = open_sys_ad();
        test::run_script(f, {"click:cmdClose"});
        QCOMPARE(stored(t, "tempNumVolumes"), std::string("7"));
        QCOMPARE(stored(t, "password"), std::string(""));
        for (const AdminList& l : kAdminLists) QCOMPARE(stored(t, l.count_key), std::string("0"));
    }

    void count_out_of_range_is_told_and_the_list_is_empty() {
        auto t = test::install_test_services();
        t.boxes->expect();
        t.settings->save_setting("kyt", "Startup", "tempNumModels", "40000");
        t.settings->save_setting("kyt", "Startup", "Model1", "M1");
        frmSysAd* f = open_sys_ad();
        QCOMPARE(f->findChild<QComboBox*>("cmbSysAdData_3")->count(), 0);
        QCOMPARE(int(t.boxes->shown.size()), 1);
        QVERIFY(t.boxes->shown[0].text.find("tempNumModels") != std::string::npos);
        QCOMPARE(t.boxes->shown[0].style, 16);
    }
};

QTEST_MAIN(tst_sysad)
#include "tst_sysad.moc"
