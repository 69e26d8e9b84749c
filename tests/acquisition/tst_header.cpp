#include <QtTest>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <cmath>
#include <map>

#include "acquisition/frmHeader.h"
#include "acquisition/header_rules.h"
#include "support/form_script.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

frmHeader* open_header() { return test::open_fresh<frmHeader>(); }

bool bold(frmHeader* f, const char* label) { return f->findChild<QLabel*>(label)->font().bold(); }

QWidget* focused() { return QApplication::focusWidget(); }

ReportRec sample_rec() {
    ReportRec r;
    r.manufacturer = "Old maker";
    r.technician = "Old tech";
    r.set_rates = "10";
    return r;
}

const std::map<QString, std::string ReportRec::*>& members() {
    static const std::map<QString, std::string ReportRec::*> m = {
        {"manufacturer", &ReportRec::manufacturer}, {"model", &ReportRec::model},
        {"serial_no", &ReportRec::serial_no},       {"control_no", &ReportRec::control_no},
        {"department", &ReportRec::department},     {"location", &ReportRec::location},
        {"set_rates", &ReportRec::set_rates},       {"vtbi", &ReportRec::vtbi},
        {"comment", &ReportRec::comment},           {"technician", &ReportRec::technician},
        {"pump_type", &ReportRec::pump_type},       {"pump_tolerance", &ReportRec::pump_tolerance},
    };
    return m;
}

const std::string invalid = "Invalid entry, entry must be numeric.";

}  // namespace

class tst_header : public QObject {
    Q_OBJECT
private slots:
    // Enter in a field, or leaving it.
    void entry_checks_data() {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("mandatory");
        QTest::addColumn<QString>("filled");  // "-": left as it was
        QTest::addColumn<bool>("refused");
        QTest::addColumn<double>("set_rate");  // NaN: none taken
        const double none = std::nan("");
        QTest::newRow("mandatory maker, empty") << 0 << "" << true << "no" << false << none;
        QTest::newRow("mandatory maker, a blank is not empty") << 0 << " " << true << "yes" << false << none;
        QTest::newRow("optional maker, empty: not looked at") << 0 << "" << false << "-" << false << none;
        QTest::newRow("mandatory tolerance takes a letter") << 8 << "x" << true << "yes" << false << none;
        QTest::newRow("optional volume, letter: no error") << 1 << "x" << false << "-" << false << none;
        QTest::newRow("mandatory volume, letter") << 1 << "x" << true << "no" << true << none;
        QTest::newRow("mandatory volume, empty: no error") << 1 << "" << true << "no" << false << none;
        QTest::newRow("mandatory volume, number with blanks") << 1 << " 50 " << true << "yes" << false << none;
        QTest::newRow("optional set rate, letter: refused") << 4 << "x" << false << "no" << true << none;
        QTest::newRow("optional set rate, empty") << 4 << "" << false << "no" << false << none;
        QTest::newRow("set rate with exponent") << 4 << "1.5E2" << false << "yes" << false << 150.0;
        QTest::newRow("two set rates refused") << 4 << "25 50" << true << "no" << true << none;
        QTest::newRow("mandatory serial, empty") << 9 << "" << true << "no" << false << none;
        QTest::newRow("optional control number") << 10 << "" << false << "-" << false << none;
    }
    void entry_checks() {
        QFETCH(int, field);
        QFETCH(QString, text);
        QFETCH(bool, mandatory);
        QFETCH(QString, filled);
        QFETCH(bool, refused);
        QFETCH(double, set_rate);
        const EntryOutcome r = check_entry(field, ss(text), mandatory);
        QCOMPARE(QString(!r.filled ? "-" : *r.filled ? "yes" : "no"), filled);
        QCOMPARE(r.not_numeric, refused);
        QCOMPARE(r.set_rate.has_value(), !std::isnan(set_rate));
        if (r.set_rate) QCOMPARE(*r.set_rate, set_rate);
    }

    // What Continue looks at: mandatory fields only, in field-number order.
    void first_unfit_data() {
        QTest::addColumn<QStringList>("texts");  // fields 0 to 10
        QTest::addColumn<QList<int>>("mandatory");
        QTest::addColumn<int>("unfit");  // -1: all in order
        const QStringList empty(11, "");
        QStringList filled(11, "a");
        filled[1] = filled[4] = "5";
        QStringList vtbi_x = filled;
        vtbi_x[1] = "x";
        QStringList appended = empty;
        appended[0] = "disabled";
        QTest::newRow("nothing mandatory, all empty") << empty << QList<int>{} << -1;
        QTest::newRow("field order, not tab order") << empty << QList<int>{9, 6} << 6;
        QTest::newRow("mandatory volume not numeric") << vtbi_x << QList<int>{0, 1} << 1;
        QTest::newRow("optional volume not numeric passes") << vtbi_x << QList<int>{0, 4} << -1;
        QTest::newRow("two-digit field") << empty << QList<int>{10} << 10;
        QTest::newRow("a disabled field passes") << appended << QList<int>{0} << -1;
        QTest::newRow("the spare twelfth flag is not a field") << empty << QList<int>{11} << -1;
    }
    void first_unfit() {
        QFETCH(QStringList, texts);
        QFETCH(QList<int>, mandatory);
        QFETCH(int, unfit);
        HeaderEntries e;
        for (int i = 0; i < kHeaderFieldCount; ++i) e.field[static_cast<std::size_t>(i)] = ss(texts[i]);
        MandatoryFlags flags{};
        for (int i : mandatory) flags[static_cast<std::size_t>(i)] = true;
        QCOMPARE(first_unfit_field(e, flags).value_or(-1), unfit);
    }

    void lists_fill_the_boxes_and_free_text_works() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "tempNumManu", "2");
        t.settings->save_setting("kyt", "Startup", "Manufacturer1", "Acme");
        t.settings->save_setting("kyt", "Startup", "Manufacturer2", "Baxo");
        t.settings->save_setting("kyt", "Startup", "tempNumPumpTolerances", "1");
        t.settings->save_setting("kyt", "Startup", "PumpTolerance1", "5.5");
        frmHeader* f = open_header();
        auto* makers = f->findChild<QComboBox*>("cmbHdr_0");
        QCOMPARE(makers->count(), 2);
        QCOMPARE(makers->itemText(1), QString("Baxo"));
        QCOMPARE(f->findChild<QComboBox*>("cmbHdr_8")->count(), 1);
        for (int i = 0; i < kListCount; ++i) {
            auto* box = f->findChild<QComboBox*>(QString("cmbHdr_%1").arg(i));
            QVERIFY(box->currentText().isEmpty());  // no entry picked beforehand
            if (i != 0 && i != 8) QCOMPARE(box->count(), 0);
        }
        test::run_script(f, {"focus:cmbHdr_7", "type:Syringe", "focus:cmbHdr_8", "type:5",
                             "focus:cmbHdr_0", "pick:1", "press:cmdContinue"});
        QVERIFY(!forms::is_loaded<frmHeader>());
        QCOMPARE(shared().report_rec.pump_type, std::string("Syringe"));
        QCOMPARE(shared().report_rec.manufacturer, std::string("Baxo"));
        QCOMPARE(shared().report_rec.pump_tolerance, std::string("5"));  // typed, not completed to a listed entry
        QVERIFY(shared().run.header_entered);
        QVERIFY(t.boxes->shown.empty());
    }

    // Labels are bold for the mandatory fields; the flags are read anew.
    void mandatory_labels() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "FIELD3MANDATORY", "True");
        t.settings->save_setting("kyt", "Startup", "FIELD10MANDATORY", "True");
        t.settings->save_setting("kyt", "Startup", "FIELD1MANDATORY", "False");
        shared().mandatory.fill(true);
        frmHeader* f = open_header();
        const char* labels[] = {"lblManufacturer", "lblVTBI",     "lblTechnician", "lblModel",
                                "lblFlowRate",     "lblLocation", "lblDepartment", "lblPumpType",
                                "lblTolerance",    "lblSerial",   "lblControlNo"};
        for (int i = 0; i < kHeaderFieldCount; ++i) {
            QCOMPARE(bold(f, labels[i]), i == 3 || i == 10);
            QCOMPARE(shared().mandatory[static_cast<std::size_t>(i)], i == 3 || i == 10);
            QCOMPARE(f->field_filled[static_cast<std::size_t>(i)], !(i == 3 || i == 10));
        }
        QVERIFY(!shared().mandatory[11]);
        QVERIFY(bold(f, "lblMandatoryFields"));
    }

    // A single-rate test must have a set rate, whatever the store says.
    void single_rate_needs_a_set_rate_data() {
        QTest::addColumn<QString>("stored");  // "FIELD4MANDATORY"; "-" absent
        QTest::addColumn<bool>("single_rate");
        QTest::addColumn<bool>("required");
        QTest::newRow("stored false, single rate") << "False" << true << true;
        QTest::newRow("absent, single rate") << "-" << true << true;
        QTest::newRow("stored false, no single rate") << "False" << false << false;
        QTest::newRow("stored true, no single rate") << "True" << false << true;
    }
    void single_rate_needs_a_set_rate() {
        QFETCH(QString, stored);
        QFETCH(bool, single_rate);
        QFETCH(bool, required);
        auto t = test::install_test_services();
        if (required) t.boxes->expect();
        if (stored != "-") t.settings->save_setting("KYT", "STARTUP", "FIELD4MANDATORY", ss(stored));
        shared().run.header_is_single_rate = single_rate;
        shared().report_rec = sample_rec();
        frmHeader* f = open_header();
        QCOMPARE(bold(f, "lblFlowRate"), required);
        test::run_script(f, {"focus:txtComment", "type:no rate", "press:cmdContinue"});
        QCOMPARE(forms::is_loaded<frmHeader>(), required);
        if (required) {
            QCOMPARE(int(t.boxes->shown.size()), 1);
            test::expect_box(t.boxes->shown[0],
                             "One or more mandatory fields are empty.\r\nPlease fill in all mandatory fields.", 48,
                             "Mandatory Field Error");
            QCOMPARE(focused(), f->findChild<QWidget*>("cmbHdr_4"));
            QCOMPARE(shared().report_rec, sample_rec());
            // With a rate it goes through.
            test::run_script(f, {"type:25", "press:cmdContinue"});
            QVERIFY(!forms::is_loaded<frmHeader>());
            QCOMPARE(shared().report_rec.set_rates, std::string("25"));
        } else {
            QVERIFY(t.boxes->shown.empty());
            QCOMPARE(shared().report_rec.comment, std::string("no rate"));
        }
    }

    void set_rate_letter_refused_on_leaving_but_not_by_continue() {
        auto t = test::install_test_services();
        t.boxes->expect(2);
        frmHeader* f = open_header();
        test::run_script(f, {"focus:cmbHdr_4", "type:x", "tab"});
        QCOMPARE(int(t.boxes->shown.size()), 1);
        test::expect_box(t.boxes->shown[0], invalid, 16, "ERROR");
        QCOMPARE(focused(), f->findChild<QWidget*>("cmbHdr_4"));
        QVERIFY(!f->field_filled[4]);
        // Enter gives the same refusal, and does not press Continue.
        test::run_script(f, {"enter"});
        QCOMPARE(int(t.boxes->shown.size()), 2);
        QVERIFY(forms::is_loaded<frmHeader>());
        // Continue does not check a set rate that is not mandatory.
        test::run_script(f, {"press:cmdContinue"});
        QVERIFY(!forms::is_loaded<frmHeader>());
        QCOMPARE(int(t.boxes->shown.size()), 2);
        QCOMPARE(shared().report_rec.set_rates, std::string("x"));
    }

    // Clicking Continue out of the field leaves it first: the refusal comes
    // before the button acts, and the button does not act.
    void continue_clicked_from_a_bad_set_rate() {
        auto t = test::install_test_services();
        t.boxes->expect();
        frmHeader* f = open_header();
        test::run_script(f, {"focus:cmbHdr_4", "type:x", "click:cmdContinue"});
        QCOMPARE(int(t.boxes->shown.size()), 1);
        QCOMPARE(t.boxes->shown[0].text, invalid);
        QVERIFY(forms::is_loaded<frmHeader>());
        QCOMPARE(focused(), f->findChild<QWidget*>("cmbHdr_4"));
    }

    void volume_letter_when_not_mandatory_is_never_refused() {
        auto t = test::install_test_services();
        frmHeader* f = open_header();
        test::run_script(f, {"focus:cmbHdr_1", "type:x", "enter", "tab", "click:cmdContinue"});
        QVERIFY(t.boxes->shown.empty());
        QVERIFY(!forms::is_loaded<frmHeader>());
        QCOMPARE(shared().report_rec.vtbi, std::string("x"));
    }

    void set_rate_taken_as_a_number() {
        auto t = test::install_test_services();
        shared().report_set_rate = -1;
        frmHeader* f = open_header();
        test::run_script(f, {"focus:cmbHdr_4", "type: 1.5E2 ", "enter"});
        QCOMPARE(shared().report_set_rate, 150.0);
        test::run_script(f, {"erase", "type:0.5", "tab"});
        QCOMPARE(shared().report_set_rate, 0.5);
        QVERIFY(t.boxes->shown.empty());
    }

    // Nine fields are trimmed at both ends, three are kept as typed.
    void record_fields_data() {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("member");
        QTest::addColumn<QString>("expected");
        QTest::newRow("manufacturer") << "cmbHdr_0" << " Acme " << "manufacturer" << "Acme";
        QTest::newRow("model") << "cmbHdr_3" << "  M-200" << "model" << "M-200";
        QTest::newRow("serial") << "txtSerialNo" << " S1 " << "serial_no" << "S1";
        QTest::newRow("control") << "txtControlNo" << "C 7 " << "control_no" << "C 7";
        QTest::newRow("department") << "cmbHdr_6" << " ICU" << "department" << "ICU";
        QTest::newRow("location") << "cmbHdr_5" << "Room 3 " << "location" << "Room 3";
        QTest::newRow("set rate") << "cmbHdr_4" << " 25 " << "set_rates" << "25";
        QTest::newRow("volume") << "cmbHdr_1" << " 100" << "vtbi" << "100";
        QTest::newRow("comment") << "txtComment" << "  fine  " << "comment" << "fine";
        QTest::newRow("technician") << "cmbHdr_2" << " Ann " << "technician" << " Ann ";
        QTest::newRow("pump type") << "cmbHdr_7" << " LVP" << "pump_type" << " LVP";
        QTest::newRow("tolerance") << "cmbHdr_8" << "5 " << "pump_tolerance" << "5 ";
    }
    void record_fields() {
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QString, member);
        QFETCH(QString, expected);
        auto t = test::install_test_services();
        shared().report_rec = sample_rec();
        frmHeader* f = open_header();
        test::run_script(f, {"focus:" + control, "type:" + typed, "press:cmdContinue"});
        QVERIFY(!forms::is_loaded<frmHeader>());
        QVERIFY(t.boxes->shown.empty());
        const ReportRec& r = shared().report_rec;
        for (const auto& [name, field] : members())
            QCOMPARE(qs(r.*field), name == member ? expected : QString());
    }

    void appended_file_disables_the_identifying_fields() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "FIELD0MANDATORY", "True");
        t.settings->save_setting("kyt", "Startup", "FIELD2MANDATORY", "True");
        t.settings->save_setting("kyt", "Startup", "tempNumManu", "1");
        t.settings->save_setting("kyt", "Startup", "Manufacturer1", "Acme");
        shared().run.file_appended = true;
        frmHeader* f = open_header();
        for (const char* name : {"cmbHdr_0", "cmbHdr_3", "txtSerialNo", "txtControlNo", "cmbHdr_5", "cmbHdr_6"}) {
            QWidget* w = f->findChild<QWidget*>(name);
            QVERIFY2(!w->isEnabled(), name);
            const QString text = qobject_cast<QComboBox*>(w) ? static_cast<QComboBox*>(w)->currentText()
                                                              : static_cast<QLineEdit*>(w)->text();
            QCOMPARE(text, QString("disabled"));
        }
        for (const char* name : {"cmbHdr_1", "cmbHdr_2", "cmbHdr_4", "cmbHdr_7", "cmbHdr_8", "txtComment"})
            QVERIFY2(f->findChild<QWidget*>(name)->isEnabled(), name);
        // A disabled field is not bold even when mandatory, and passes.
        QVERIFY(!bold(f, "lblManufacturer"));
        QVERIFY(bold(f, "lblTechnician"));
        test::run_script(f, {"focus:cmbHdr_2", "type:Ann", "press:cmdContinue"});
        QVERIFY(!forms::is_loaded<frmHeader>());
        QCOMPARE(shared().report_rec.manufacturer, std::string("disabled"));
        QCOMPARE(shared().report_rec.serial_no, std::string("disabled"));
        QCOMPARE(shared().report_rec.technician, std::string("Ann"));
    }

    void close_box_leaves_the_record_as_it_was() {
        auto t = test::install_test_services();
        shared().report_rec = sample_rec();
        shared().run.header_entered = false;
        frmHeader* f = open_header();
        test::run_script(f, {"focus:cmbHdr_0", "type:New maker", "focus:cmbHdr_2", "type:New tech"});
        f->close();
        test::flush_deletes();
        QVERIFY(!forms::is_loaded<frmHeader>());
        QCOMPARE(shared().report_rec, sample_rec());
        QVERIFY(!shared().run.header_entered);
        QVERIFY(t.boxes->shown.empty());
    }

    void nothing_mandatory_empty_form_gives_an_empty_record() {
        auto t = test::install_test_services();
        shared().report_rec = sample_rec();
        frmHeader* f = open_header();
        test::run_script(f, {"press:cmdContinue"});
        QCOMPARE(shared().report_rec, ReportRec{});
        QVERIFY(shared().run.header_entered);
        QVERIFY(t.boxes->shown.empty());
    }
};

QTEST_MAIN(tst_header)
#include "tst_header.moc"
