// The data log graph on the real form, offscreen: the first draw of a
// stored log, the arrows, the flow scale, the toggles and Defaults, a
// refused file that leaves the graph as it was, the page, and the way out.

#include <QtTest>

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>

#include "common/chart.h"
#include "common/forms.h"
#include "graph/frmGraph.h"
#include "trumpet/frmSetRate.h"
#include "common/shared_state.h"
#include "support/form_script.h"
#include "support/pdf_printer.h"
#include "support/pdf_text.h"
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
// of the flow and volume curves, the two toggles' captions.
QString view_of(frmGraph* f) {
    Chart& g = *f->findChild<Chart*>("DGraph");
    const AxisRange x = g.range(ChartAxis::x), y = g.range(ChartAxis::left);
    const auto text = [&](const char* name) { return f->findChild<QPushButton*>(name)->text(); };
    return QString("x %1-%2 pts %3-%4 y %5-%6 [%7|%8|%9] flow %10 vol %11 %12/%13")
        .arg(x.min).arg(x.max).arg(g.first_drawn_point()).arg(g.last_drawn_point()).arg(y.min).arg(y.max)
        .arg(QString::fromStdString(g.legend_text(1)), QString::fromStdString(g.legend_text(2)),
             QString::fromStdString(g.legend_text(3)))
        .arg(g.curve_style(1) == CurveStyle::hidden ? "off" : "on")
        .arg(g.curve_style(3) == CurveStyle::hidden ? "off" : "on")
        .arg(text("cmdFlow"), text("cmdVolume"));
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

    // From the first draw of a 45-minute log, the presses and what the view
    // shows after them.
    void presses_data() {
        QTest::addColumn<QStringList>("presses");
        QTest::addColumn<QString>("view");
        QTest::newRow("first draw") << QStringList{}
                                    << "x 0-10 pts 1-20 y 41-58 [Flow|Avg Flow|Volume] flow on vol on Flow Off/Vol Off";
        QTest::newRow("later, then a longer span")
            << QStringList{"cmdTimeLeft", "cmdScaleLeft"}
            << "x 10-30 pts 1-62 y 41-58 [Flow|Avg Flow|Volume] flow on vol on Flow Off/Vol Off";
        QTest::newRow("flow scale twice: base rate 50, then 50 per cent either side")
            << QStringList{"cmdIncreaseFlowScale", "cmdIncreaseFlowScale"}
            << "x 0-10 pts 1-20 y 25-75 [Flow|Avg Flow|Volume] flow on vol on Flow Off/Vol Off";
        QTest::newRow("flow off blanks its legend; the range moves on a record")
            << QStringList{"cmdFlow"} << "x 0.5-10 pts 1-20 y 41-58 [ |Avg Flow|Volume] flow off vol on Flow On/Vol Off";
        QTest::newRow("volume off")
            << QStringList{"cmdVolume"} << "x 0-10 pts 1-20 y 41-58 [Flow|Avg Flow| ] flow on vol off Flow Off/Vol On";
        QTest::newRow("Defaults bring the opening view back")
            << QStringList{"cmdVolume", "cmdFlow", "cmdTimeLeft", "cmdNormal"}
            << "x 0-10 pts 1-20 y 41-58 [Flow|Avg Flow|Volume] flow on vol on Flow Off/Vol Off";
    }
    void presses() {
        QFETCH(QStringList, presses);
        QFETCH(QString, view);
        auto t = test::install_test_services();
        frmGraph* f = open_log(t);
        QVERIFY(f->windowTitle().startsWith("DATA LOG GRAPH - [ "));
        for (const QString& p : presses) f->findChild<QPushButton*>(p)->click();
        QCOMPARE(view_of(f), view);
    }

    // A file the reader refuses is told (the reader's own test takes every
    // kind); the graph on show stays. A base rate typed in is shown.
    void refused_file_and_base_rate() {
        auto t = test::install_test_services();
        frmGraph* form = open_log(t);
        const QString before = view_of(form), title = form->windowTitle();
        t.dialogs->queue(graph_log("occlusion.log").toStdString());
        t.boxes->expect(1);
        form->findChild<QAction*>("mnuOpen")->trigger();
        QCOMPARE(t.boxes->shown.at(0).text, std::string("Occlusion Pressure test Graph not implemented"));
        QCOMPARE(view_of(form), before);
        QCOMPARE(form->windowTitle(), title);
        test::enter_rate_when_shown("120");
        form->findChild<QPushButton*>("cmdSetRate")->click();
        QCOMPARE(form->findChild<QLabel*>("lblSetRate")->text(), QString(" 120 (ml/hr)"));
    }

    // The printed page: landscape, the heading, the four lines of figures
    // and the chart in its box.
    void printed_page() {
        auto t = test::install_test_services();
        QTemporaryDir pdfs;
        services().printer = std::make_unique<test::PdfPrinter>(pdfs.path());
        frmGraph* f = open_log(t);
        t.boxes->answer(answer_yes);
        f->findChild<QAction*>("mnuPrintGraph")->trigger();
        const QStringList pdf = QDir(pdfs.path()).entryList({"*.pdf"});
        QCOMPARE(pdf.size(), 1);
        const QString path = pdfs.filePath(pdf.first());
        QCOMPARE(test::page_count(path), 1);
        QVERIFY(test::is_landscape(path));
        const QString text = test::page_texts(path).value(0);
        for (const QString& expected :
             QStringList{"Corvane Systems Inc.", "Data Log Graph", "Average flow rate:", "Number of Points:",
                         "Minimum flow rate:", "File name:  " + graph_log("single_rate_45min.log").toLower(), "Time (minutes)"})
            QVERIFY2(text.simplified().contains(expected.simplified()), qPrintable(expected + " not in\n" + text));
    }

    // Save Graph as Image: the saving is the trumpet graph's too (its test
    // takes every format); here the log graph's own texts, and no second box
    // when the retry is given up.
    void image_file_not_written() {
        auto t = test::install_test_services();
        QTemporaryDir work;
        frmGraph* f = open_log(t);
        t.dialogs->queue(work.filePath("missing/g.bmp").toStdString());
        t.dialogs->queue("");
        t.boxes->expect(1);
        f->findChild<QAction*>("mnuBMP")->trigger();
        QCOMPARE(t.boxes->shown.at(0).text, std::string("Error in graph file name"));
        QCOMPARE(t.dialogs->requests.back().dialog.title, std::string("SAVE GRAPH AS AN IMAGE"));
        QVERIFY(QDir(work.path()).isEmpty());
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
