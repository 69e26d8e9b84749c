// The log graph and the trumpet view on their real forms, offscreen.

#include <QtTest>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>

#include "common/chart.h"
#include "common/forms.h"
#include "common/shared_state.h"
#include "graph/frmGraph.h"
#include "graph/log_reader.h"
#include "support/form_script.h"
#include "support/pdf_printer.h"
#include "support/pdf_text.h"
#include "support/test_services.h"
#include "trumpet/frmSetRate.h"
#include "trumpet/frmTrumpSet.h"
#include "trumpet/frmTrumpetGraph.h"

using namespace kyt;

namespace {

QString graph_log(const QString& name) { return qEnvironmentVariable("KYT_SOURCE_DIR") + "/tests/data/graph/" + name; }

// A steady 100 ml/h log of 130 minutes, a record a minute: too few records for 30 s.
LogSeries minute_records() {
    LogSeries s;
    for (int i = 0; i <= 130; ++i) {
        s.graph_time.push_back(i);
        s.graph_avg_flow.push_back(i == 0 ? 0 : 100);
        s.graph_volume.push_back(i * 100 / 60.0);
    }
    s.graph_flow = s.graph_avg_flow;
    s.graph_last_index = 130;
    s.base_rate = 100;
    return s;
}

QString entries(QComboBox* list) {
    QStringList l;
    for (int i = 0; i < list->count(); ++i) l << list->itemText(i);
    return l.join(' ');
}

QString label(QWidget* f, const QString& name) { return f->findChild<QLabel*>(name)->text(); }

// The trumpet form opened from the log graph, the settings dialog run by its script.
frmTrumpetGraph* open_trumpet(frmGraph* g, const QStringList& settings) {
    test::when_shown("frmTrumpSet", [settings](QWidget* d) { test::run_script(d, settings); });
    g->mnuTrumpetGraph_Click();
    test::serve_events();
    return forms::loaded<frmTrumpetGraph>();
}

// The log graph's view as one line: ranges, drawn points, legends, curves shown, toggles, base rate.
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

// "rate:" types a base rate.
void press(QWidget* f, const QString& p) {
    if (p.startsWith("rate:")) test::enter_rate_when_shown(p.mid(5));
    f->findChild<QPushButton*>(p.startsWith("rate:") ? "cmdSetRate" : p)->click();
}

frmGraph* log_graph(test::TestServices& t, const QString& name = "single_rate_130min.log") {
    frmGraph* g = test::open_fresh<frmGraph>();
    t.dialogs->queue(graph_log(name).toStdString());
    g->findChild<QAction*>("mnuOpen")->trigger();
    return g;
}

}  // namespace

class tst_trumpet_form : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        forms::register_form<frmSetRate>();
        forms::register_form<frmTrumpSet>();
        forms::register_form<frmTrumpetGraph>();
    }

    void cleanup() {
        test::drop_waits();
        forms::unload<frmTrumpetGraph>();
        forms::unload<frmGraph>();
        test::flush_deletes();
    }

    // The log graph: from the first draw of a 45-minute log, presses and what the view shows after them.
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
        QTest::newRow("Defaults") << QStringList{"cmdVolume", "cmdFlow", "cmdTimeLeft", "cmdNormal"} << "x 0-10 pts 1-20 y 41-58 " + shown;
        QTest::newRow("a base rate typed in") << QStringList{"rate:120"} << "x 0-10 pts 1-20 y 41-58 " + QString(shown).replace("50", "120");
    }
    void presses() {
        QFETCH(QStringList, presses);
        QFETCH(QString, view);
        auto t = test::install_test_services();
        frmGraph* f = log_graph(t, "single_rate_45min.log");
        for (const QString& p : presses) press(f, p);
        QCOMPARE(view_of(f), view);
    }

    // Exit asks first: No keeps the graph, Yes closes it.
    void exit_asks() {
        auto t = test::install_test_services();
        frmGraph* f = test::open_fresh<frmGraph>();
        for (const auto answer : {answer_no, answer_yes}) {
            t.boxes->answer(answer);
            f->findChild<QPushButton*>("cmdGraph_Exit")->click();
            QCOMPARE(forms::is_loaded<frmGraph>(), answer == answer_no);
        }
    }
    // The settings dialog on a stored log, then presses ("a|b": a opens a dialog run by b); Exit returns the rate.
    void runs_data() {
        QTest::addColumn<QString>("log");
        QTest::addColumn<QStringList>("steps");  // in the first dialog
        QTest::addColumn<QStringList>("presses");
        // lengths/starts before the last step (" -": starts disabled) | period@interval, error axis, base rate, boxes
        QTest::addColumn<QString>("state");
        const QString log = "single_rate_130min.log", lists = "60 120 All/0 30 60 | ";
        const QString defaults = lists + "60 min  -  From 60 to 120 min@60 -15..15 Base Rate:  99 ml/hr";
        const QStringList ok{"click:CmdOK"}, none;
        QTest::newRow("first opening") << log << ok << none << defaults;
        QTest::newRow("a start") << log << QStringList{"focus:StartTime", "pick:0"} + ok << none
                                 << QString(defaults).replace("From 60 to 120", "From 0 to 60");
        QTest::newRow("All disables the starts") << log << QStringList{"focus:DataInt", "pick:2"} + ok << none
                                                 << "60 120 All/0 - | 130 min  -  From 0 to 130 min@60 -15..15 Base Rate:  99 ml/hr";
        QTest::newRow("under an hour: refused") << "single_rate_45min.log" << none << none
                                                << "/ |  told: Insufficient data for Trumpet Graph";
        QTest::newRow("cancelled at the first opening") << log << QStringList{"click:CmdCancel"} << none << lists;
        QTest::newRow("Scale three times") << log << ok << QStringList(3, "cmdScale") << QString(defaults).replace("15", "60");
        QTest::newRow("Scale four times: back to 15") << log << ok << QStringList(4, "cmdScale") << defaults;
        QTest::newRow("New Data: all at 30 s, scale kept") << log << ok
            << QStringList{"cmdScale", "GetNewData|press:Option1|focus:DataInt|pick:2|click:CmdOK"}
            << lists + "130 min  -  From 0 to 130 min@30 -30..30 Base Rate:  99 ml/hr";
        QTest::newRow("a base rate") << log << ok << QStringList{"rate:120"} << QString(defaults).replace("99", "120");
        QTest::newRow("not a number") << log << ok << QStringList{"rate:fast"} << defaults + " told: Non-numeric value";
        QTest::newRow("zero") << log << ok << QStringList{"rate:0"} << defaults + " told: Zero value not possible.";
        QTest::newRow("so small the errors overflow") << log << ok << QStringList{"rate:1e-300"}
            << lists + "@60 -15..15 Base Rate:  1E-300 ml/hr no print told: The trumpet graph cannot be shown. "
               "A trumpet value is out of range; trumpet computation cancelled.";
    }
    void runs() {
        QFETCH(QString, log);
        QFETCH(QStringList, steps);
        QFETCH(QStringList, presses);
        QFETCH(QString, state);
        auto t = test::install_test_services();
        t.boxes->allow_any();
        frmGraph* g = log_graph(t, log);
        QString seen = "/ | ";
        test::when_shown("frmTrumpSet", [&](QWidget* d) {
            test::run_script(d, steps.mid(0, steps.size() - 1));
            auto* start = d->findChild<QComboBox*>("StartTime");
            seen = entries(d->findChild<QComboBox*>("DataInt")) + "/" + entries(start) + (start->isEnabled() ? " | " : " - | ");
            test::run_script(d, steps.mid(steps.size() - 1));
        });
        g->mnuTrumpetGraph_Click();
        test::serve_events();
        frmTrumpetGraph* f = forms::loaded<frmTrumpetGraph>();
        QCOMPARE(g->isVisible(), !f);
        for (const QString& p : presses) {
            const QStringList dialog = p.split('|');
            if (dialog.size() > 1)
                test::when_shown("frmTrumpSet", [dialog](QWidget* d) { test::run_script(d, dialog.mid(1)); });
            press(f, dialog.first());
            test::serve_events();
        }
        if (f) {
            const AxisRange axis = f->findChild<Chart*>("TGraph")->range(ChartAxis::left);
            seen += label(f, "lblAnalysisPeriod").mid(18) + "@" + QString::number(shared().trumpet.interpolation_interval) +
                    QString(" %1..%2 ").arg(axis.min).arg(axis.max) + label(f, "lblSetRate") +
                    (f->findChild<QPushButton*>("cmdPrint")->isEnabled() ? "" : " no print");
        }
        for (const auto& b : t.boxes->shown) seen += " told: " + QString::fromStdString(b.text);
        QCOMPARE(seen, state);
        if (!f) return;
        if (f->findChild<QPushButton*>("cmdPrint")->isEnabled()) QCOMPARE(f->findChild<Chart*>("TGraph")->point_count(1), 5);
        if (QTest::currentDataTag() == QByteArray("first opening")) {
            QCOMPARE(label(f, "lblAvgError") + " " + label(f, "lblAvgRate"), QString("% Error:  0.051 Avg Rate:  99.05 ml/hr"));
            QCOMPARE(f->windowTitle(), "TRUMPET GRAPH - [" + graph_log(log).toLower() + " ]");
        }
        const QString rate = label(f, "lblSetRate").section(' ', 3, 3);
        f->findChild<QPushButton*>("mnuExitGraph")->click();
        test::flush_deletes();
        QVERIFY(!forms::is_loaded<frmTrumpetGraph>() && g->isVisible());
        QVERIFY2(label(g, "lblSetRate").contains(rate), qPrintable(label(g, "lblSetRate") + " " + rate));
    }

    // The printed page of a log with too few records for 30 s carries the warning.
    void printed_page() {
        auto t = test::install_test_services();
        QTemporaryDir pdfs;
        services().printer = std::make_unique<test::PdfPrinter>(pdfs.path());
        frmGraph* g = log_graph(t);
        graph_series() = minute_records();
        g->graph_file_name = "MADE.log";
        frmTrumpetGraph* f = open_trumpet(g, {"press:Option1", "click:CmdOK"});
        t.boxes->answer(answer_yes);
        f->findChild<QPushButton*>("cmdPrint")->click();
        const QStringList pdf = QDir(pdfs.path()).entryList({"*.pdf"});
        QCOMPARE(pdf.size(), 1);
        const QString path = pdfs.filePath(pdf.first());
        QVERIFY(test::page_count(path) == 1 && test::is_landscape(path));
        const QString text = test::page_texts(path).value(0).simplified();
        for (const char* line : {"Data Interpolation Interval: 30sec", "File name: made.log",
                                 "Warning: The data used to generate this graph had an insufficient"})
            QVERIFY2(text.contains(line), qPrintable(text));
    }

    // Save: the suffix decides the format; a refused suffix, a cancel, a name that cannot be written.
    void image_files_data() {
        QTest::addColumn<QStringList>("names");  // the dialog's answers, in the work folder
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QByteArray>("magic");   // how the written file begins; empty: none written
        QTest::newRow("wmf") << QStringList{"t.WMF"} << QStringList{} << QByteArray("\xd7\xcd\xc6\x9a");
        QTest::newRow("gif") << QStringList{"t.gif"} << QStringList{} << QByteArray("GIF8");
        QTest::newRow(".jpeg refused") << QStringList{"t.jpeg"} << QStringList{"Bad Trumpet Graph File Name Suffix"} << QByteArray();
        QTest::newRow("given up") << QStringList{""} << QStringList{"Image conversion cancelled"} << QByteArray();
        QTest::newRow("cannot be written, then given up") << QStringList{"missing/t.bmp", ""}
            << QStringList{"Error in trumpet graph file name", "Trumpet graph save cancelled"} << QByteArray();
    }
    void image_files() {
        QFETCH(QStringList, names);
        QFETCH(QStringList, boxes);
        QFETCH(QByteArray, magic);
        auto t = test::install_test_services();
        QTemporaryDir work;
        frmTrumpetGraph* f = open_trumpet(log_graph(t), {"click:CmdOK"});
        for (const QString& n : names) t.dialogs->queue(n.isEmpty() ? "" : work.filePath(n).toStdString());
        t.boxes->expect(boxes.size());
        f->findChild<QPushButton*>("cmdSave")->click();
        QStringList told;
        for (const auto& b : t.boxes->shown) told << QString::fromStdString(b.text);
        QCOMPARE(told, boxes);
        const QStringList files = QDir(work.path()).entryList(QDir::Files);
        QCOMPARE(files.size(), magic.isEmpty() ? 0 : 1);
        if (magic.isEmpty()) return;
        QFile file(work.filePath(files.first()));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.read(magic.size()), magic);
    }
};

QTEST_MAIN(tst_trumpet_form)
#include "tst_trumpet_form.moc"
