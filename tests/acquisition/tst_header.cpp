#include <QtTest>

#include <QLabel>

#include "acquisition/frmHeader.h"
#include "acquisition/header_rules.h"
#include "support/form_script.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

const ReportRec sample_rec{"Old maker", "", "", "", "", "", "10", "", "", "Old tech", "", ""};

}  // namespace

class tst_header : public QObject {
    Q_OBJECT
private slots:
    // Continue looks at mandatory fields only: a volume that is not a number stops it only when mandatory.
    void first_unfit_data() {
        QTest::addColumn<QList<int>>("mandatory");
        QTest::addColumn<int>("unfit");  // -1: all in order
        QTest::newRow("mandatory volume not numeric") << QList<int>{0, 1} << 1;
        QTest::newRow("optional volume not numeric passes") << QList<int>{0, 4} << -1;
    }
    void first_unfit() {
        QFETCH(QList<int>, mandatory);
        QFETCH(int, unfit);
        HeaderEntries e;
        e.field.fill("a");
        e.field[1] = "x";  // the volume
        e.field[4] = "5";  // the set rate, a number
        MandatoryFlags flags{};
        for (int i : mandatory) flags[static_cast<std::size_t>(i)] = true;
        QCOMPARE(first_unfit_field(e, flags).value_or(-1), unfit);
    }

    // The set rate mandatory (its label bold) as stored, and always for a single-rate test.
    void set_rate_mandatory_data() {
        QTest::addColumn<QString>("stored");  // FIELD4MANDATORY
        QTest::addColumn<bool>("single_rate");
        QTest::addColumn<bool>("required");
        QTest::newRow("stored false, single rate") << "False" << true << true;
        QTest::newRow("stored false, no single rate") << "False" << false << false;
        QTest::newRow("stored true, no single rate") << "True" << false << true;
    }
    void set_rate_mandatory() {
        QFETCH(QString, stored);
        QFETCH(bool, single_rate);
        QFETCH(bool, required);
        auto t = test::install_test_services();
        if (required) t.boxes->expect();
        t.settings->save_setting("KYT", "STARTUP", "FIELD4MANDATORY", ss(stored));
        shared().run.header_is_single_rate = single_rate;
        shared().report_rec = sample_rec;
        frmHeader* f = test::open_fresh<frmHeader>();
        QCOMPARE(f->findChild<QLabel*>("lblFlowRate")->font().bold(), required);
        test::run_script(f, {"focus:txtComment", "type:no rate", "press:cmdContinue"});
        QCOMPARE(forms::is_loaded<frmHeader>(), required);
        QCOMPARE(int(t.boxes->shown.size()), int(required));
        if (!required) return;
        test::expect_box(t.boxes->shown[0],
                         "One or more mandatory fields are empty.\r\nPlease fill in all mandatory fields.", 48,
                         "Mandatory Field Error");
        QCOMPARE(QApplication::focusWidget(), f->findChild<QWidget*>("cmbHdr_4"));
        QCOMPARE(shared().report_rec, sample_rec);
        test::run_script(f, {"type:25", "press:cmdContinue"});
        QVERIFY(!forms::is_loaded<frmHeader>());
        QCOMPARE(shared().report_rec.set_rates, std::string("25"));
    }

    // A refused entry keeps the focus; Continue checks only the field left for it.
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
        frmHeader* f = test::open_fresh<frmHeader>();
        test::run_script(f, script);
        QCOMPARE(int(t.boxes->shown.size()), refusals);
        for (const auto& box : t.boxes->shown) test::expect_box(box, "Invalid entry, entry must be numeric.", 16, "ERROR");
        QCOMPARE(forms::is_loaded<frmHeader>(), !focus.isEmpty());
        if (!focus.isEmpty()) QCOMPARE(QApplication::focusWidget(), f->findChild<QWidget*>(focus));
        QCOMPARE(shared().report_set_rate, set_rate);
    }
};

QTEST_MAIN(tst_header)
#include "tst_header.moc"
