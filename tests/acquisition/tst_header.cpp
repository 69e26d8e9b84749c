#include <QtTest>

#include <QComboBox>
#include <QLabel>

#include "acquisition/frmHeader.h"
#include "acquisition/header_rules.h"
#include "support/form_script.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "support/test_services.h"

using namespace kyt;

Q_DECLARE_METATYPE(kyt::ReportRec)

namespace {

frmHeader* open_header() { return test::open_fresh<frmHeader>(); }

bool bold(frmHeader* f, const char* label) { return f->findChild<QLabel*>(label)->font().bold(); }

QWidget* focused() { return QApplication::focusWidget(); }

const ReportRec sample_rec{"Old maker", "", "", "", "", "", "10", "", "", "Old tech", "", ""};

QStringList fields_of(const ReportRec& r) {
    QStringList out;
    for (const std::string* f : {&r.manufacturer, &r.model, &r.serial_no, &r.control_no, &r.department, &r.location,
                                 &r.set_rates, &r.vtbi, &r.comment, &r.technician, &r.pump_type, &r.pump_tolerance})
        out << qs(*f);
    return out;
}

const std::string invalid = "Invalid entry, entry must be numeric.";

}  // namespace

class tst_header : public QObject {
    Q_OBJECT
private slots:
    // Enter in a field, or leaving it (a set rate refused or taken on the
    // form is in field_events).
    void entry_checks_data() {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("mandatory");
        QTest::addColumn<QString>("filled");  // "-": left as it was
        QTest::addColumn<bool>("refused");
        QTest::newRow("mandatory maker, a blank is not empty") << 0 << " " << true << "yes" << false;
        QTest::newRow("optional maker, empty: not looked at") << 0 << "" << false << "-" << false;
        QTest::newRow("optional volume, letter: no error") << 1 << "x" << false << "-" << false;
        QTest::newRow("mandatory volume, letter") << 1 << "x" << true << "no" << true;
        QTest::newRow("mandatory volume, number with blanks") << 1 << " 50 " << true << "yes" << false;
        QTest::newRow("optional set rate, empty") << 4 << "" << false << "no" << false;
        QTest::newRow("mandatory serial, empty") << 9 << "" << true << "no" << false;
    }
    void entry_checks() {
        QFETCH(int, field);
        QFETCH(QString, text);
        QFETCH(bool, mandatory);
        QFETCH(QString, filled);
        QFETCH(bool, refused);
        const EntryOutcome r = check_entry(field, ss(text), mandatory);
        QCOMPARE(QString(!r.filled ? "-" : *r.filled ? "yes" : "no"), filled);
        QCOMPARE(r.not_numeric, refused);
        QVERIFY(!r.set_rate);  // none of these is a set rate that is taken
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
        QTest::newRow("field order, not tab order") << empty << QList<int>{9, 6} << 6;
        QTest::newRow("mandatory volume not numeric") << vtbi_x << QList<int>{0, 1} << 1;
        QTest::newRow("optional volume not numeric passes") << vtbi_x << QList<int>{0, 4} << -1;
        QTest::newRow("two-digit field") << empty << QList<int>{10} << 10;
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
        for (int i = 0; i < kListCount; ++i) {
            auto* box = f->findChild<QComboBox*>(QString("cmbHdr_%1").arg(i));
            QVERIFY(box->currentText().isEmpty());  // no entry picked beforehand
            QCOMPARE(box->count(), i == 0 ? 2 : i == 8 ? 1 : 0);
        }
        test::run_script(f, {"focus:cmbHdr_8", "type:5", "focus:cmbHdr_0", "pick:1", "press:cmdContinue"});
        QVERIFY(!forms::is_loaded<frmHeader>());
        QCOMPARE(shared().report_rec.manufacturer, std::string("Baxo"));
        QCOMPARE(shared().report_rec.pump_tolerance, std::string("5"));  // typed, not completed to a listed entry
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
        QTest::addColumn<QString>("stored");  // "FIELD4MANDATORY"
        QTest::addColumn<bool>("single_rate");
        QTest::addColumn<bool>("required");
        QTest::newRow("stored false, single rate") << "False" << true << true;
        QTest::newRow("stored false, no single rate") << "False" << false << false;
        QTest::newRow("stored true, no single rate") << "True" << false << true;
    }
    void single_rate_needs_a_set_rate() {
        QFETCH(QString, stored);
        QFETCH(bool, single_rate);
        QFETCH(bool, required);
        auto t = test::install_test_services();
        if (required) t.boxes->expect();
        t.settings->save_setting("KYT", "STARTUP", "FIELD4MANDATORY", ss(stored));
        shared().run.header_is_single_rate = single_rate;
        shared().report_rec = sample_rec;
        frmHeader* f = open_header();
        QCOMPARE(bold(f, "lblFlowRate"), required);
        test::run_script(f, {"focus:txtComment", "type:no rate", "press:cmdContinue"});
        QCOMPARE(forms::is_loaded<frmHeader>(), required);
        QCOMPARE(int(t.boxes->shown.size()), int(required));
        if (!required) return;
        test::expect_box(t.boxes->shown[0],
                         "One or more mandatory fields are empty.\r\nPlease fill in all mandatory fields.", 48,
                         "Mandatory Field Error");
        QCOMPARE(focused(), f->findChild<QWidget*>("cmbHdr_4"));
        QCOMPARE(shared().report_rec, sample_rec);
        // With a rate it goes through.
        test::run_script(f, {"type:25", "press:cmdContinue"});
        QVERIFY(!forms::is_loaded<frmHeader>());
        QCOMPARE(shared().report_rec.set_rates, std::string("25"));
    }

    // Enter in a field, or leaving it, on the form: a refusal keeps the focus
    // in the field; Continue checks only the field that is left for it.
    void field_events_data() {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<int>("refusals");
        QTest::addColumn<QString>("focus");    // the control that keeps the focus; "" when the header is gone
        QTest::addColumn<double>("set_rate");  // taken from the set rate; -1 when none
        QTest::newRow("a bad set rate refused on leaving and on Enter, not by Continue")
            << QStringList{"focus:cmbHdr_4", "type:x", "tab", "enter", "press:cmdContinue"} << 2 << "" << -1.0;
        QTest::newRow("Continue clicked from a bad set rate: the refusal first, the button does not act")
            << QStringList{"focus:cmbHdr_4", "type:x", "click:cmdContinue"} << 1 << "cmbHdr_4" << -1.0;
        QTest::newRow("an optional volume is never refused")
            << QStringList{"focus:cmbHdr_1", "type:x", "enter", "tab", "click:cmdContinue"} << 0 << "" << -1.0;
        QTest::newRow("the set rate taken as a number")
            << QStringList{"focus:cmbHdr_4", "type: 1.5E2 ", "enter"} << 0 << "cmbHdr_4" << 150.0;
    }
    void field_events() {
        QFETCH(QStringList, script);
        QFETCH(int, refusals);
        QFETCH(QString, focus);
        QFETCH(double, set_rate);
        auto t = test::install_test_services();
        t.boxes->expect(std::size_t(refusals));
        shared().report_set_rate = -1;
        frmHeader* f = open_header();
        test::run_script(f, script);
        QCOMPARE(int(t.boxes->shown.size()), refusals);
        for (const auto& box : t.boxes->shown) test::expect_box(box, invalid, 16, "ERROR");
        QCOMPARE(forms::is_loaded<frmHeader>(), !focus.isEmpty());
        if (!focus.isEmpty()) QCOMPARE(focused(), f->findChild<QWidget*>(focus));
        QCOMPARE(shared().report_set_rate, set_rate);
    }

    // The record after the header: nine fields trimmed at both ends, three
    // kept as typed; the close box leaves it as it was.
    void record_data() {
        QTest::addColumn<QStringList>("script");  // "close" at its end: the close box
        QTest::addColumn<ReportRec>("expected");
        QTest::addColumn<bool>("entered");
        QTest::newRow("every field typed")
            << QStringList{"focus:cmbHdr_0", "type: Acme ", "focus:cmbHdr_3", "type:  M-200",
                           "focus:txtSerialNo", "type: S1 ", "focus:txtControlNo", "type:C 7 ",
                           "focus:cmbHdr_6", "type: ICU", "focus:cmbHdr_5", "type:Room 3 ",
                           "focus:cmbHdr_4", "type: 25 ", "focus:cmbHdr_1", "type: 100",
                           "focus:txtComment", "type:  fine  ", "focus:cmbHdr_2", "type: Ann ",
                           "focus:cmbHdr_7", "type: LVP", "focus:cmbHdr_8", "type:5 ", "press:cmdContinue"}
            << ReportRec{"Acme", "M-200", "S1", "C 7", "ICU", "Room 3", "25", "100", "fine", " Ann ", " LVP", "5 "}
            << true;
        QTest::newRow("nothing typed gives an empty record") << QStringList{"press:cmdContinue"} << ReportRec{} << true;
        QTest::newRow("the close box keeps the record")
            << QStringList{"focus:cmbHdr_0", "type:New maker", "focus:cmbHdr_2", "type:New tech", "close"}
            << sample_rec << false;
    }
    void record() {
        QFETCH(QStringList, script);
        QFETCH(ReportRec, expected);
        QFETCH(bool, entered);
        auto t = test::install_test_services();
        shared().report_rec = sample_rec;
        shared().run.header_entered = false;
        frmHeader* f = open_header();
        const bool close = script.last() == "close";
        test::run_script(f, close ? script.mid(0, script.size() - 1) : script);
        if (close) f->close();
        test::flush_deletes();
        QVERIFY(!forms::is_loaded<frmHeader>());
        QVERIFY(t.boxes->shown.empty());
        QCOMPARE(fields_of(shared().report_rec), fields_of(expected));
        QCOMPARE(shared().run.header_entered, entered);
    }

    void appended_file_disables_the_identifying_fields() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "FIELD0MANDATORY", "True");
        t.settings->save_setting("kyt", "Startup", "FIELD2MANDATORY", "True");
        t.settings->save_setting("kyt", "Startup", "tempNumManu", "1");
        t.settings->save_setting("kyt", "Startup", "Manufacturer1", "Acme");
        shared().run.file_appended = true;
        frmHeader* f = open_header();
        for (const char* name : {"cmbHdr_0", "cmbHdr_3", "txtSerialNo", "txtControlNo", "cmbHdr_5", "cmbHdr_6"})
            QVERIFY2(!f->findChild<QWidget*>(name)->isEnabled(), name);
        for (const char* name : {"cmbHdr_1", "cmbHdr_2", "cmbHdr_4", "cmbHdr_7", "cmbHdr_8", "txtComment"})
            QVERIFY2(f->findChild<QWidget*>(name)->isEnabled(), name);
        // A disabled field is not bold even when mandatory, and passes.
        QVERIFY(!bold(f, "lblManufacturer"));
        QVERIFY(bold(f, "lblTechnician"));
        test::run_script(f, {"focus:cmbHdr_2", "type:Ann", "press:cmdContinue"});
        QVERIFY(!forms::is_loaded<frmHeader>());
        const std::string d = "disabled";
        QCOMPARE(fields_of(shared().report_rec), fields_of(ReportRec{d, d, d, d, d, d, "", "", "", "Ann", "", ""}));
    }
};

QTEST_MAIN(tst_header)
#include "tst_header.moc"
