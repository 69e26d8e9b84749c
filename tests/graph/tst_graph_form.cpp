// The data log graph on the real form, offscreen: the first draw of a
// stored log, the arrows, the flow scale, the toggles and Defaults, a
// refused file that leaves the graph as it was, and the way out.

#include <QtTest>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
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
        frmGraph* f = test::open_fresh<frmGraph>();
        t.dialogs->queue(graph_log("single_rate_45min.log").toStdString());
        f->findChild<QAction*>("mnuOpen")->trigger();
        QVERIFY(f->windowTitle().startsWith("DATA LOG GRAPH - [ "));
        QVERIFY(f->findChild<QLabel*>("lblNoPoints")->text().startsWith("No Pts:  "));
        for (const QString& p : presses) f->findChild<QPushButton*>(p)->click();
        QCOMPARE(view_of(f), view);
    }

    // A file the reader refuses is told, and the graph on show stays.
    void refused_files_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("message");  // the start of the box's text
        QTest::newRow("occlusion log") << "occlusion" << "Occlusion Pressure test Graph not implemented";
        QTest::newRow("not a log") << "text" << "Insufficient number of Graph Points";
        QTest::newRow("empty file") << "empty" << "Insufficient number of Graph Points";
        QTest::newRow("100 MB of nothing") << "huge" << "Insufficient number of Graph Points";
        QTest::newRow("a record cut short") << "damaged" << "";
        QTest::newRow("more than 32767 records") << "long" << "";
    }
    void refused_files() {
        QFETCH(QString, kind);
        QFETCH(QString, message);
        auto t = test::install_test_services();
        QTemporaryDir work;
        QString name = work.filePath("refused.log");
        QFile f(name);
        QVERIFY(f.open(QIODevice::WriteOnly));
        QFile base(graph_log("single_rate_45min.log"));
        QVERIFY(base.open(QIODevice::ReadOnly));
        const QByteArray log = base.readAll();
        if (kind == "occlusion") name = graph_log("occlusion.log");
        if (kind == "text") f.write("hello\r\n");
        if (kind == "huge") f.resize(100 << 20);
        if (kind == "damaged") f.write(QByteArray(log).replace("00:10:00  ", "00:10:00\r\n"));
        if (kind == "long") {
            const int head = log.indexOf("00:00:30");
            f.write(log.left(head));
            for (int i = 0; i < 33000; ++i)
                f.write(QString("         %1:%2:%3  50.00   50.00    1.000     3\r\n")
                            .arg(i / 120 % 100, 2, 10, QChar('0')).arg(i / 2 % 60, 2, 10, QChar('0'))
                            .arg(i % 2 * 30, 2, 10, QChar('0')).toLatin1());
        }
        f.close();
        frmGraph* form = test::open_fresh<frmGraph>();
        t.dialogs->queue(graph_log("single_rate_45min.log").toStdString());
        form->findChild<QAction*>("mnuOpen")->trigger();
        const QString before = view_of(form), title = form->windowTitle();
        t.dialogs->queue(name.toStdString());
        t.boxes->allow_any();
        form->findChild<QAction*>("mnuOpen")->trigger();
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        QVERIFY2(QString::fromStdString(t.boxes->shown[0].text).startsWith(message), t.boxes->shown[0].text.c_str());
        QCOMPARE(view_of(form), before);
        QCOMPARE(form->windowTitle(), title);
    }

    // The base rate dialog: a number other than 0 becomes the base rate;
    // anything else is told (the trumpet graph's test takes every kind).
    void base_rate_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("shown");  // lblSetRate afterwards
        QTest::newRow("a rate") << "120" << "" << " 120 (ml/hr)";
        QTest::newRow("zero") << "0" << "Zero value not possible." << " 50 (ml/hr)";
    }
    void base_rate() {
        QFETCH(QString, typed);
        QFETCH(QString, box);
        QFETCH(QString, shown);
        auto t = test::install_test_services();
        frmGraph* form = test::open_fresh<frmGraph>();
        t.dialogs->queue(graph_log("single_rate_45min.log").toStdString());
        form->findChild<QAction*>("mnuOpen")->trigger();
        t.boxes->expect(box.isEmpty() ? 0 : 1);
        test::enter_rate_when_shown(typed);
        form->findChild<QPushButton*>("cmdSetRate")->click();
        QCOMPARE(t.boxes->shown.empty() ? QString() : QString::fromStdString(t.boxes->shown[0].text), box);
        QCOMPARE(form->findChild<QLabel*>("lblSetRate")->text(), shown);
        QCOMPARE(shared().rate_changed, box.isEmpty());
    }

    // The printed page: landscape, the heading, the four lines of figures
    // and the chart in its box.
    void printed_page() {
        auto t = test::install_test_services();
        QTemporaryDir pdfs;
        services().printer = std::make_unique<test::PdfPrinter>(pdfs.path());
        frmGraph* f = test::open_fresh<frmGraph>();
        const QString log = graph_log("single_rate_45min.log");
        t.dialogs->queue(log.toStdString());
        f->findChild<QAction*>("mnuOpen")->trigger();
        t.boxes->answer(answer_yes);
        f->findChild<QAction*>("mnuPrintGraph")->trigger();
        const QStringList pdf = QDir(pdfs.path()).entryList({"*.pdf"});
        QCOMPARE(pdf.size(), 1);
        const QString path = pdfs.filePath(pdf.first());
        QCOMPARE(test::page_count(path), 1);
        QVERIFY(test::is_landscape(path));
        const QString text = test::page_texts(path).value(0);
        for (const QString& expected : {QString("Corvane Systems Inc."), QString("Data Log Graph"),
                                        QString("Average flow rate:"), QString("Number of Points:"),
                                        QString("Minimum flow rate:"), "File name:  " + log.toLower(),
                                        QString("Time (minutes)")})
            QVERIFY2(text.simplified().contains(expected.simplified()), qPrintable(expected + " not in\n" + text));
    }

    // Save Graph as Image: the saving is the trumpet graph's too (its test
    // takes every format); here the log graph's own texts.
    void image_files_data() {
        QTest::addColumn<QStringList>("names");  // the dialog's answers, in the work folder
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QByteArray>("magic");   // how the written file begins; empty: none written
        QTest::newRow("bitmap") << QStringList{"g.bmp"} << QStringList{} << QByteArray("BM");
        QTest::newRow(".jpeg reads as JPE") << QStringList{"g.jpeg"} << QStringList{"Bad Graph File Name Suffix"}
                                            << QByteArray();
        QTest::newRow("folder that cannot be written, then given up")
            << QStringList{"missing/g.bmp", ""} << QStringList{"Error in graph file name"} << QByteArray();
    }
    void image_files() {
        QFETCH(QStringList, names);
        QFETCH(QStringList, boxes);
        QFETCH(QByteArray, magic);
        auto t = test::install_test_services();
        QTemporaryDir work;
        frmGraph* f = test::open_fresh<frmGraph>();
        t.dialogs->queue(graph_log("single_rate_45min.log").toStdString());
        f->findChild<QAction*>("mnuOpen")->trigger();
        for (const QString& n : names) t.dialogs->queue(n.isEmpty() ? "" : work.filePath(n).toStdString());
        t.boxes->expect(boxes.size());
        f->findChild<QAction*>("mnuBMP")->trigger();
        QStringList told;
        for (const auto& b : t.boxes->shown) told << QString::fromStdString(b.text);
        QCOMPARE(told, boxes);
        QCOMPARE(t.dialogs->requests.back().dialog.title, std::string("SAVE GRAPH AS AN IMAGE"));
        const QStringList files = QDir(work.path()).entryList(QDir::Files);
        QCOMPARE(files.size(), magic.isEmpty() ? 0 : 1);
        if (!magic.isEmpty()) {
            QFile file(work.filePath(files.first()));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.read(magic.size()), magic);
        }
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
