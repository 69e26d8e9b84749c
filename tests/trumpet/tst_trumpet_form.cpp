// The trumpet view on its real forms, offscreen: the settings lists for the
// log's length, the activations that compute again (first opening, Scale,
// New Data, Cancel, Base Rate), the printed page and the image files.

#include <QtTest>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>

#include <cmath>

#include "common/chart.h"
#include "common/forms.h"
#include "common/qt_text.h"
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
#include "trumpet/trumpet_settings.h"

using namespace kyt;

namespace {

QString graph_log(const QString& name) { return qEnvironmentVariable("KYT_SOURCE_DIR") + "/tests/data/graph/" + name; }

// A steady 100 ml/h log of L minutes, a record every `step` minutes and the
// last at L.
LogSeries series_of(double L, double step = 0.5) {
    LogSeries s;
    for (double t = 0;; t += step) {
        const double at = std::min(t, L);
        s.graph_time.push_back(at);
        s.graph_flow.push_back(100);
        s.graph_avg_flow.push_back(at == 0 ? 0 : 100 + std::sin(at) * 3);
        s.graph_volume.push_back(at / 60 * s.graph_avg_flow.back());
        if (at >= L) break;
    }
    s.graph_last_index = static_cast<int>(s.graph_time.size()) - 1;
    s.base_rate = 100;
    return s;
}

QString entries(QComboBox* list) {
    QStringList l;
    for (int i = 0; i < list->count(); ++i) l << list->itemText(i);
    return l.join(' ');
}

QString label(QWidget* f, const QString& name) { return f->findChild<QLabel*>(name)->text(); }

// The trumpet form opened from the log graph, the settings dialog run by
// its script when it comes up.
frmTrumpetGraph* open_trumpet(frmGraph* g, const QStringList& settings) {
    test::when_shown("frmTrumpSet", [settings](QWidget* d) { test::run_script(d, settings); });
    g->mnuTrumpetGraph_Click();
    test::serve_events();
    return forms::loaded<frmTrumpetGraph>();
}

// The log graph on show with the 130-minute log.
frmGraph* log_graph(test::TestServices& t) {
    frmGraph* g = test::open_fresh<frmGraph>();
    t.dialogs->queue(graph_log("single_rate_130min.log").toStdString());
    g->findChild<QAction*>("mnuOpen")->trigger();
    return g;
}

// The four cells of every row as the form shows them, against the core's
// run with the settings now in force.
void table_agrees_with_core(frmTrumpetGraph* f) {
    const TrumpetState& t = shared().trumpet;
    const TrumpetResult r =
        kyt::graph_trumpet(graph_series(), {t.interpolation_interval, t.trumpet_start_time, t.trumpet_end_time});
    QVERIFY(r.ok());
    const TrumpetSummaryTexts s = trumpet_summary_texts(r, graph_series().base_rate, t.trumpet_start_time,
                                                        t.trumpet_end_time);
    for (int i = 0; i < 5; ++i) {
        const auto cell = [&](const char* name) { return label(f, QString(name).arg(i)); };
        QCOMPARE(QStringList({cell("lblMaxErrorP_%1"), cell("lblMaxErrorR_%1"), cell("lblMinErrorP_%1"), cell("lblMinErrorR_%1")}).join(' '),
                 qs(s.max_error_percent[i] + ' ' + s.max_error_rate[i] + ' ' + s.min_error_percent[i] + ' ' + s.min_error_rate[i]));
    }
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

    // The settings dialog on a log of L minutes, the steps taken in it, and
    // what its lists and the analysis then show.
    void settings_data() {
        QTest::addColumn<double>("L");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("lengths");
        QTest::addColumn<QString>("starts");  // "-" after the entries: the list is disabled
        QTest::addColumn<QString>("period");  // lblAnalysisPeriod; empty: the trumpet did not open
        const QString lengths_600 = "60 120 180 240 300 360 420 480 540 All";
        const QString starts_600 = "0 30 60 90 120 150 180 210 240 270 300 330 360 390 420 450 480 510";
        const QStringList ok{"click:CmdOK"};
        QTest::newRow("600 minutes, a later start") << 600.0 << QStringList{"focus:StartTime", "pick:5"} + ok << lengths_600
                                                    << starts_600 << "60 min  -  From 150 to 210 min";
        QTest::newRow("600 minutes, 540 leave two starts") << 600.0 << QStringList{"focus:DataInt", "pick:8"} + ok
                                                           << lengths_600 << "0 30" << "540 min  -  From 30 to 570 min";
        QTest::newRow("75.6, All: 76") << 75.6 << QStringList{"focus:DataInt", "pick:1"} + ok << "60 All" << "0 -"
                                       << "76 min  -  From 0 to 76 min";
        QTest::newRow("Default above 120") << 130.0 << QStringList{"focus:DataInt", "pick:2", "click:Default"} + ok
                                           << "60 120 All" << "0 30 60" << "60 min  -  From 60 to 120 min";
        QTest::newRow("no Default at 120") << 120.0 << QStringList{"focus:DataInt", "pick:1", "click:Default"} + ok
                                           << "60 All" << "0 -" << "120 min  -  From 0 to 120 min";
        QTest::newRow("under an hour: refused") << 59.99 << QStringList{} << "" << "" << "";
        QTest::newRow("cancelled at the first opening") << 130.0 << QStringList{"click:CmdCancel"} << "60 120 All"
                                                        << "0 30 60" << "";
    }
    void settings() {
        QFETCH(double, L);
        QFETCH(QStringList, steps);
        QFETCH(QString, lengths);
        QFETCH(QString, starts);
        QFETCH(QString, period);
        auto t = test::install_test_services();
        frmGraph* g = test::open_fresh<frmGraph>();
        graph_series() = series_of(L);
        if (lengths.isEmpty()) t.boxes->expect(1);
        QString seen_lengths, seen_starts;
        // The lists as the last step leaves them, just before it.
        test::when_shown("frmTrumpSet", [&](QWidget* d) {
            test::run_script(d, steps.mid(0, steps.size() - 1));
            auto* start = d->findChild<QComboBox*>("StartTime");
            seen_lengths = entries(d->findChild<QComboBox*>("DataInt"));
            seen_starts = entries(start) + (start->isEnabled() ? "" : " -");
            test::run_script(d, steps.mid(steps.size() - 1));
        });
        g->mnuTrumpetGraph_Click();
        test::serve_events();
        QCOMPARE(seen_lengths, lengths);
        QCOMPARE(seen_starts, starts);
        frmTrumpetGraph* f = forms::loaded<frmTrumpetGraph>();
        QCOMPARE(f != nullptr, !period.isEmpty());
        QCOMPARE(g->isVisible(), period.isEmpty());
        if (lengths.isEmpty())
            test::expect_box(t.boxes->shown.at(0), "Insufficient data for Trumpet Graph", box_exclamation,
                             "Data Error");
        if (!f) return;
        QCOMPARE(label(f, "lblAnalysisPeriod"), "Analysis Period:  " + period);
        table_agrees_with_core(f);
    }

    // On the 130-minute log: what each press leads to, the dialog that a
    // press opens run by the steps after its "|".
    void activations_data() {
        QTest::addColumn<QStringList>("presses");
        QTest::addColumn<QString>("period");
        QTest::addColumn<double>("interval");
        QTest::addColumn<double>("axis");  // the top of the error axis
        QTest::newRow("first opening") << QStringList{} << "60 min  -  From 60 to 120 min" << 60.0 << 15.0;
        QTest::newRow("Scale three times") << QStringList(3, "cmdScale") << "60 min  -  From 60 to 120 min" << 60.0 << 60.0;
        QTest::newRow("Scale four times: back to 15") << QStringList(4, "cmdScale") << "60 min  -  From 60 to 120 min"
                                                      << 60.0 << 15.0;
        QTest::newRow("New Data: all at 30 s, scale kept")
            << QStringList{"cmdScale", "GetNewData|press:Option1|focus:DataInt|pick:2|click:CmdOK"}
            << "130 min  -  From 0 to 130 min" << 30.0 << 30.0;
        QTest::newRow("Cancel after New Data keeps the analysis, not the interval")
            << QStringList{"GetNewData|press:Option1|focus:DataInt|pick:2|click:CmdCancel"}
            << "60 min  -  From 60 to 120 min" << 30.0 << 15.0;
    }
    void activations() {
        QFETCH(QStringList, presses);
        QFETCH(QString, period);
        QFETCH(double, interval);
        QFETCH(double, axis);
        auto t = test::install_test_services();
        frmGraph* g = log_graph(t);
        frmTrumpetGraph* f = open_trumpet(g, {"click:CmdOK"});
        QVERIFY(f);
        QCOMPARE(f->windowTitle(), "TRUMPET GRAPH - [" + graph_log("single_rate_130min.log").toLower() + " ]");
        for (const QString& press : presses) {
            const QStringList dialog = press.split('|');
            if (dialog.size() > 1)
                test::when_shown("frmTrumpSet", [dialog](QWidget* d) { test::run_script(d, dialog.mid(1)); });
            f->findChild<QPushButton*>(dialog.first())->click();
            test::serve_events();
        }
        QCOMPARE(label(f, "lblAnalysisPeriod"), "Analysis Period:  " + period);
        QCOMPARE(shared().trumpet.interpolation_interval, interval);
        const Chart& chart = *f->findChild<Chart*>("TGraph");
        QCOMPARE(chart.range(ChartAxis::left), (AxisRange{-axis, axis}));
        QCOMPARE(chart.point_count(1), 5);
        QCOMPARE(*chart.point_x(3, 5), 31.0);
        table_agrees_with_core(f);
        if (presses.isEmpty()) {
            // The figures of this log at its defaults, worked out apart.
            QCOMPARE(label(f, "lblAvgError") + " " + label(f, "lblAvgRate"), QString("% Error:  0.051 Avg Rate:  99.05 ml/hr"));
        }
        QVERIFY(!g->isVisible());
    }

    // Base Rate: the typed text, what is told, and the rate shown; Exit then
    // brings the log graph back with that rate.
    void base_rate_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("rate");
        QTest::newRow("a rate") << "120" << "" << "120";
        QTest::newRow("not a number") << "fast" << "Non-numeric value" << "99";
        QTest::newRow("zero") << "0" << "Zero value not possible." << "99";
        QTest::newRow("so small the errors overflow")
            << "1e-300"
            << "The trumpet graph cannot be shown. A trumpet value is out of range; trumpet computation cancelled."
            << "1E-300";
    }
    void base_rate() {
        QFETCH(QString, typed);
        QFETCH(QString, box);
        QFETCH(QString, rate);
        auto t = test::install_test_services();
        frmGraph* g = log_graph(t);
        frmTrumpetGraph* f = open_trumpet(g, {"click:CmdOK"});
        t.boxes->expect(box.isEmpty() ? 0 : 1);
        test::enter_rate_when_shown(typed);
        f->findChild<QPushButton*>("cmdSetRate")->click();
        QCOMPARE(t.boxes->shown.empty() ? QString() : QString::fromStdString(t.boxes->shown[0].text), box);
        QCOMPARE(label(f, "lblSetRate"), "Base Rate:  " + rate + " ml/hr");
        const bool computed = !box.startsWith("The trumpet");
        QCOMPARE(f->findChild<QPushButton*>("cmdPrint")->isEnabled(), computed);
        if (computed) table_agrees_with_core(f);
        f->findChild<QPushButton*>("mnuExitGraph")->click();
        test::flush_deletes();
        QVERIFY(!forms::is_loaded<frmTrumpetGraph>());
        QVERIFY(g->isVisible());
        QVERIFY2(label(g, "lblSetRate").contains(rate), qPrintable(label(g, "lblSetRate")));
    }

    // The printed page: its text lines rebuilt column by column from the PDF,
    // the warning where the points are too few, and the chart's box four
    // inches from the top whether or not the warning is printed.
    void printed_page_data() {
        QTest::addColumn<bool>("minute_records");  // a made log of a record a minute, at 30 s
        QTest::addColumn<QStringList>("lines");    // lines of the page in a row, from the first given
        const QString log = graph_log("single_rate_130min.log").toLower();
        QTest::newRow("the 130-minute log at its defaults")
            << false
            << QStringList{"Average % Error:  0.051 %",
                           "Analysis Period:  60 min -  From 60 to 120 min",
                           "Data Interpolation Interval: 60sec",
                           "File name:  " + log,
                           "Observation Period:",
                           "            2                 5                 11                 19                 31",
                           QString("       %      ml/hr").repeated(5),
                           "     05.09    05.04     02.31    02.29     01.37    01.36     00.69    00.69     00.31    00.31",
                           "    -05.15   -05.10    -02.36   -02.34    -01.38   -01.36    -00.73   -00.73    -00.30   -00.30"};
        QTest::newRow("too few records: the warning") << true << QStringList{
            "Data Interpolation Interval: 30sec",
            "Warning: The data used to generate this graph had an insufficient",
            "number of data points to be an accurate representation",
            "File name:  made.log",
            "Observation Period:"};
    }
    void printed_page() {
        QFETCH(bool, minute_records);
        QFETCH(QStringList, lines);
        auto t = test::install_test_services();
        QTemporaryDir pdfs;
        services().printer = std::make_unique<test::PdfPrinter>(pdfs.path());
        frmGraph* g = log_graph(t);
        if (minute_records) {
            graph_series() = series_of(130, 1);
            g->graph_file_name = "MADE.log";
        }
        frmTrumpetGraph* f = open_trumpet(g, minute_records ? QStringList{"press:Option1", "click:CmdOK"}
                                                            : QStringList{"click:CmdOK"});
        t.boxes->answer(answer_yes);
        f->findChild<QPushButton*>("cmdPrint")->click();
        const QStringList pdf = QDir(pdfs.path()).entryList({"*.pdf"});
        QCOMPARE(pdf.size(), 1);
        const QString path = pdfs.filePath(pdf.first());
        QCOMPARE(test::page_count(path), 1);
        QVERIFY(test::is_landscape(path));
        const QList<test::PdfWord> words = test::words_of(path);
        const auto word = [&](const QString& text) {
            for (const test::PdfWord& w : words)
                if (w.text == text) return w;
            return test::PdfWord{0, -1, {}};
        };
        const double left = word("Observation").x_inches;
        const QStringList page = test::fixed_pitch_lines(words, 1, left, 0.1);
        const QString all = page.join('\n');
        const qsizetype first = page.indexOf(lines.first());
        QVERIFY2(first > 0, qPrintable(all));
        QStringList printed = page.mid(first, lines.size());
        // The warning stands a column and a half in, in a smaller type: its
        // words are compared, and its place on its own.
        if (minute_records) {
            for (QString& line : printed) line = line.trimmed();
            QVERIFY(std::abs(word("Warning:").x_inches - left - 0.15) < 0.02);
        }
        QCOMPARE(printed, lines);
        QVERIFY2(all.contains("Corvane Systems Inc.") && all.simplified().contains("Trumpet Graph"), qPrintable(all));
        // The chart's own x-axis title stands near the foot of its box.
        const double axis_title = word("Period(minutes)").y_inches;
        QVERIFY2(axis_title > 7.5 && axis_title < 8.0, qPrintable(QString::number(axis_title)));
    }

    // Save: the suffix decides the format; the trumpet's own texts for a
    // refused suffix, a name that cannot be written and a retry given up.
    void image_files_data() {
        QTest::addColumn<QStringList>("names");  // the dialog's answers, in the work folder
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QByteArray>("magic");   // how the written file begins; empty: none written
        QTest::newRow("wmf") << QStringList{"t.WMF"} << QStringList{} << QByteArray("\xd7\xcd\xc6\x9a");
        QTest::newRow("jpg") << QStringList{"t.jpg"} << QStringList{} << QByteArray("\xff\xd8");
        QTest::newRow("gif") << QStringList{"t.gif"} << QStringList{} << QByteArray("GIF8");
        QTest::newRow(".jpeg refused") << QStringList{"t.jpeg"} << QStringList{"Bad Trumpet Graph File Name Suffix"}
                                       << QByteArray();
        QTest::newRow("given up") << QStringList{""} << QStringList{"Image conversion cancelled"} << QByteArray();
        QTest::newRow("cannot be written, then given up")
            << QStringList{"missing/t.bmp", ""}
            << QStringList{"Error in trumpet graph file name", "Trumpet graph save cancelled"} << QByteArray();
        QTest::newRow("cannot be written, then another name")
            << QStringList{"missing/t.bmp", "t.bmp"} << QStringList{"Error in trumpet graph file name"}
            << QByteArray("BM");
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
        // A reader of its own takes the bitmaps at the chart's size.
        if (!files.first().endsWith("WMF")) {
            const QSize chart = f->findChild<Chart*>("TGraph")->size();
            QCOMPARE(test::run("identify", {"-format", "%w %h", file.fileName()}),
                     QString("%1 %2").arg(chart.width()).arg(chart.height()));
        }
    }
};

QTEST_MAIN(tst_trumpet_form)
#include "tst_trumpet_form.moc"
