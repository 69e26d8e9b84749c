// The data log graph on the real form, offscreen.

#include <QtTest>

#include <QAction>
#include <QLabel>
#include <QPushButton>

#include "common/chart.h"
#include "common/forms.h"
#include "graph/frmGraph.h"
#include "trumpet/frmSetRate.h"
#include "common/shared_state.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

QString graph_log(const QString& name) { return qEnvironmentVariable("KYT_SOURCE_DIR") + "/tests/data/graph/" + name; }

// The graph on show with the 45-minute log opened through File, Open.
frmGraph* open_log(test::TestServices& t) {
    frmGraph* f = test::open_fresh<frmGraph>();
    t.dialogs->queue(graph_log("single_rate_45min.log").toStdString());
    f->findChild<QAction*>("mnuOpen")->trigger();
    return f;
}

// The view as one line: x range, drawn points, left axis, legends, styles
// of the flow and volume curves, the two toggles' captions, the base rate.
QString view_of(frmGraph* f) {
    Chart& g = *f->findChild<Chart*>("DGraph");
    const AxisRange x = g.range(ChartAxis::x), y = g.range(ChartAxis::left);
    const auto text = [&](const char* name) { return f->findChild<QPushButton*>(name)->text(); };
    return QString("x %1-%2 pts %3-%4 y %5-%6 [%7|%8|%9] flow %10 vol %11 %12/%13 rate%14")
        .arg(x.min).arg(x.max).arg(g.first_drawn_point()).arg(g.last_drawn_point()).arg(y.min).arg(y.max)
        .arg(QString::fromStdString(g.legend_text(1)), QString::fromStdString(g.legend_text(2)),
             QString::fromStdString(g.legend_text(3)))
        .arg(g.curve_style(1) == CurveStyle::hidden ? "off" : "on")
        .arg(g.curve_style(3) == CurveStyle::hidden ? "off" : "on")
        .arg(text("cmdFlow"), text("cmdVolume"), f->findChild<QLabel*>("lblSetRate")->text());
}

}  // namespace

class tst_graph_form : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { forms::register_form<frmSetRate>(); }

    void cleanup() {
        test::drop_waits();
        forms::unload<frmGraph>();
        test::flush_deletes();
    }

    // From the first draw of a 45-minute log, the presses ("rate:" types a
    // base rate) and what the view shows after them.
    void presses_data() {
        QTest::addColumn<QStringList>("presses");
        QTest::addColumn<QString>("view");
        const QString shown = "[Flow|Avg Flow|Volume] flow on vol on Flow Off/Vol Off rate 50 (ml/hr)";
        QTest::newRow("first draw") << QStringList{} << "x 0-10 pts 1-20 y 41-58 " + shown;
        QTest::newRow("later, then a longer span") << QStringList{"cmdTimeLeft", "cmdScaleLeft"} << "x 10-30 pts 1-62 y 41-58 " + shown;
        QTest::newRow("flow scale twice: base rate 50, then 50 per cent either side")
            << QStringList{"cmdIncreaseFlowScale", "cmdIncreaseFlowScale"} << "x 0-10 pts 1-20 y 25-75 " + shown;
        QTest::newRow("flow and volume off blank their legends; the range moves on a record") << QStringList{"cmdFlow", "cmdVolume"}
            << "x 0.5-10 pts 1-20 y 41-58 [ |Avg Flow| ] flow off vol off Flow On/Vol On rate 50 (ml/hr)";
        QTest::newRow("Defaults bring the opening view back") << QStringList{"cmdVolume", "cmdFlow", "cmdTimeLeft", "cmdNormal"}
                                                              << "x 0-10 pts 1-20 y 41-58 " + shown;
        QTest::newRow("a base rate typed in") << QStringList{"rate:120"} << "x 0-10 pts 1-20 y 41-58 " + QString(shown).replace("50", "120");
    }
    void presses() {
        QFETCH(QStringList, presses);
        QFETCH(QString, view);
        auto t = test::install_test_services();
        frmGraph* f = open_log(t);
        QVERIFY(f->windowTitle().startsWith("DATA LOG GRAPH - [ "));
        for (const QString& p : presses) {
            if (p.startsWith("rate:")) test::enter_rate_when_shown(p.mid(5));
            f->findChild<QPushButton*>(p.startsWith("rate:") ? "cmdSetRate" : p)->click();
        }
        QCOMPARE(view_of(f), view);
    }

    void exit_asks() {
        auto t = test::install_test_services();
        frmGraph* f = test::open_fresh<frmGraph>();
        t.boxes->answer(answer_no);
        f->findChild<QPushButton*>("cmdGraph_Exit")->click();
        QVERIFY(forms::is_loaded<frmGraph>());
        QCOMPARE(t.boxes->shown.back().title, std::string("EXIT DATA LOG GRAPH"));
        t.boxes->answer(answer_yes);
        f->findChild<QPushButton*>("cmdGraph_Exit")->click();
        QVERIFY(!forms::is_loaded<frmGraph>());
    }
};

QTEST_MAIN(tst_graph_form)
#include "tst_graph_form.moc"
