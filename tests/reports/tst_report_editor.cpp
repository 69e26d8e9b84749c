// The report editor on real files in a temporary folder: opening, the edit
// entries on the system clipboard, saving, printing to PDF files read back
// with poppler's tools, and the conversion to a spreadsheet file.

#include <QtTest>

#include <QAction>
#include <QClipboard>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "acquisition/logformat.h"
#include "common/file_text.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "reports/frmReports.h"
#include "reports/report_file.h"
#include "support/form_script.h"
#include "support/pdf_printer.h"
#include "support/pdf_text.h"
#include "support/test_data.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

struct Editor {
    test::TestServices t;
    QTemporaryDir work;
    QTemporaryDir pdfs;
    frmReports* form = nullptr;

    Editor() : t(test::install_test_services()) {
        shared().dirs.save_dir = ss(work.path());
        services().printer = std::make_unique<test::PdfPrinter>(pdfs.path());
        forms::unload<frmReports>();
        test::flush_deletes();
        form = forms::get<frmReports>();
        form->show_as_editor();
    }
    ~Editor() {
        forms::unload<frmReports>();
        test::flush_deletes();
    }
    QString path(const QString& name) const { return work.filePath(name); }
    QString write(const QString& name, const std::string& bytes) const {
        write_text_file(ss(path(name)), bytes);
        return path(name);
    }
    // File, Open with the dialog answering `name` ("" gives up).
    void open(const QString& name) {
        t.dialogs->queue(ss(name));
        menu("mnuOpen");
    }
    void menu(const char* entry) { form->findChild<QAction*>(entry)->trigger(); }
    QPlainTextEdit* box() const { return form->findChild<QPlainTextEdit*>("txtData"); }
    QStringList boxes() const {
        QStringList told;
        for (const auto& b : t.boxes->shown) told << QString::fromStdString(b.text);
        return told;
    }
    QStringList printed() const { return QDir(pdfs.path()).entryList({"*.pdf"}); }
};

// A single-rate log of the given number of rows, written by the console's
// own log writer: 30 rows on the first page, 51 on each further one.
std::string long_log(int rows) {
    SingleRateLog log;
    std::string text = log.head(ReportRec{}, 'A', CivilTime{2026, 11, 3, 9, 5, 0});
    for (int i = 0; i < rows; ++i) text += log.row({i / 120, (i / 2) % 60, (i % 2) * 30, 100.1, 100.0, i * 0.8, 12});
    return text + log.close(ReportRec{}, true);
}

const QString not_report = "Invalid file!  The file is not a LOG or a SUMMARY file.";
const QString summary_text = QString::fromStdString(test_data("logs/analyser_summary.txt"));

}  // namespace

class tst_report_editor : public QObject {
    Q_OBJECT
private slots:
    // What File, Open makes of a file; a file that is no report leaves the
    // editor usable and nothing written.
    void open_data() {
        QTest::addColumn<QString>("file");     // written into the folder; blanks: no file
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QString>("shown");    // the box's text afterwards
        QTest::addColumn<bool>("editable");    // Save And Exit and the edit entries on
        QTest::newRow("a summary") << "a.sum" << QByteArray("SUMMARY\r\nRate 1\r\n") << QStringList{}
                                   << "SUMMARY\nRate 1\n" << true;
        QTest::newRow("LOG inside a word, bare line ends made whole")
            << "a.dat" << QByteArray("CATALOG\nlast") << QStringList{} << "CATALOG\nlast\n" << true;
        QTest::newRow("not a report") << "a.txt" << QByteArray("hello\r\n") << QStringList{not_report} << ""
                                      << false;
        QTest::newRow("a name of blanks") << "   " << QByteArray() << QStringList{"CancelOpen"} << "" << false;
    }
    void open() {
        QFETCH(QString, file);
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, boxes);
        QFETCH(QString, shown);
        QFETCH(bool, editable);
        Editor e;
        const QString name = file.trimmed().isEmpty() ? file : e.write(file, bytes.toStdString());
        const QStringList before = QDir(e.work.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries);
        e.t.boxes->expect(boxes.size());
        e.open(name);
        QCOMPARE(e.boxes().size(), boxes.size());
        for (int i = 0; i < boxes.size(); ++i) QVERIFY2(e.boxes()[i].startsWith(boxes[i]), qPrintable(e.boxes()[i]));
        QCOMPARE(e.box()->toPlainText(), shown);
        QCOMPARE(e.form->findChild<QAction*>("mnuClose")->isEnabled(), editable);
        QCOMPARE(e.form->findChild<QAction*>("mnuCut")->isEnabled(), editable);
        if (editable) QCOMPARE(e.form->windowTitle(), "REPORT - " + name);
        if (boxes.contains(not_report)) QCOMPARE(e.form->windowTitle(), QString("REPORT - file"));
        QCOMPARE(QDir(e.work.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), before);
        QVERIFY(e.form->isVisible() && !e.box()->isReadOnly());
    }

    // The edit entries on the box's selection and the system clipboard.
    void edit_entries_data() {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("clipboard");
        QTest::newRow("Clear All") << "mnuClearAll" << "" << "XY";
        QTest::newRow("Cut") << "mnuCut" << "LOG adef\n" << "bc";
        QTest::newRow("Copy") << "mnuCopy" << "LOG abcdef\n" << "bc";
        QTest::newRow("Paste") << "mnuPaste" << "LOG aXYdef\n" << "XY";
        QTest::newRow("Delete") << "mnuDelete" << "LOG adef\n" << "XY";
    }
    void edit_entries() {
        QFETCH(QString, entry);
        QFETCH(QString, text);
        QFETCH(QString, clipboard);
        Editor e;
        e.open(e.write("r.log", "LOG abcdef\r\n"));
        QGuiApplication::clipboard()->setText("XY");
        QTextCursor c = e.box()->textCursor();
        c.setPosition(5);
        c.setPosition(7, QTextCursor::KeepAnchor);
        e.box()->setTextCursor(c);
        e.menu(qPrintable(entry));
        QCOMPARE(e.box()->toPlainText(), text);
        QCOMPARE(QGuiApplication::clipboard()->text(), clipboard);
    }

    // Save And Exit and Save As store the text as edited; Quit stores
    // nothing; a folder gone keeps the text in the editor.
    void saving_data() {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QString>("stored");  // what out/r.log holds afterwards: "edited", "original" or ""
        QTest::newRow("Save And Exit") << "mnuClose" << QStringList{} << "edited";
        QTest::newRow("Quit - no save") << "mnuQuit" << QStringList{} << "original";
        QTest::newRow("Save As") << "save_as" << QStringList{} << "original";
        QTest::newRow("Save And Exit, folder gone")
            << "gone" << QStringList{"The report could not be saved as "} << "";
    }
    void saving() {
        QFETCH(QString, way);
        QFETCH(QStringList, boxes);
        QFETCH(QString, stored);
        Editor e;
        const std::string original = test_data("logs/single_rate.log");
        QDir(e.work.path()).mkdir("out");
        const QString target = e.path("out/r.log");
        e.open(e.write("out/r.log", original));
        QTextCursor c = e.box()->textCursor();
        c.movePosition(QTextCursor::Start);
        c.insertText("Checked ");
        if (way == "gone") QDir(e.path("out")).removeRecursively();
        e.t.boxes->expect(boxes.size());
        if (way == "save_as") {
            shared().run.summary_header_open = true;  // a download has opened a report with a header
            e.t.dialogs->queue(ss(e.path("out/new.log")));
            e.form->save_as();
            QCOMPARE(read_text_file(ss(e.path("out/new.log"))).value_or("(none)"), "Checked " + original);
        } else {
            e.menu(qPrintable(way == "gone" ? "mnuClose" : way));
        }
        test::flush_deletes();
        QCOMPARE(e.boxes().size(), boxes.size());
        for (int i = 0; i < boxes.size(); ++i) QVERIFY(e.boxes()[i].startsWith(boxes[i]));
        QCOMPARE(forms::is_loaded<frmReports>(), way == "gone" || way == "save_as");
        QVERIFY(!QApplication::overrideCursor());
        if (way == "gone") QVERIFY(e.box()->toPlainText().startsWith("Checked "));
        const auto text = read_text_file(ss(target));
        QCOMPARE(text.has_value(), !stored.isEmpty());
        if (text) QCOMPARE(*text, stored == "edited" ? "Checked " + original : original);
    }

    // Printed to PDF and read back: pages, page marks and file names.
    void printing_data() {
        QTest::addColumn<QByteArray>("report");   // opened in the editor; empty: none
        QTest::addColumn<int>("pages");
        QTest::addColumn<QStringList>("on_pages");  // a text each page shows, in page order
        const QByteArray log = QByteArray::fromStdString(test_data("logs/single_rate.log"));
        QTest::newRow("a summary with a form feed")
            << (summary_text.toLatin1() + "\f\r\nSecond part\r\n") << 2
            << QStringList{"MAROVANT 4500-K SUMMARY", "p. 2"};
        QTest::newRow("a data log of three pages") << log << 3 << QStringList{"p. 01", "p. 02", "p. 03"};
        // Its 302nd page begins at the last row.
        QTest::newRow("a log of some three hundred pages")
            << QByteArray::fromStdString(long_log(30 + 300 * 51)) << 302 << QStringList{};
    }
    void printing() {
        QFETCH(QByteArray, report);
        QFETCH(int, pages);
        QFETCH(QStringList, on_pages);
        Editor e;
        const QString file = e.write("r.log", report.toStdString());
        e.open(file);
        e.t.boxes->answer(answer_yes);
        e.menu("mnuPrint");
        QCOMPARE(e.boxes(), QStringList{"Are you sure want to print?"});
        QCOMPARE(e.printed().size(), 1);
        const QString pdf = e.pdfs.filePath(e.printed().first());
        QCOMPARE(test::page_count(pdf), pages);
        const QStringList texts = test::page_texts(pdf);
        for (int i = 0; i < on_pages.size(); ++i) {
            QVERIFY2(texts.value(i).simplified().contains(on_pages[i]), qPrintable(texts.value(i)));
            // Every page but the first carries the file's name at its head.
            if (i > 0) QVERIFY2(texts[i].contains("Filename") && texts[i].contains(file), qPrintable(texts[i]));
        }
    }

    // What stops a print: No at the question, no report in hand, a printer
    // that fails on every line (told once a line, and the print ends).
    void printing_refused_data() {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<QStringList>("boxes");
        const QString fault =
            "The printer is not functioning properly, use Windows online help or manual for further assitance";
        QTest::newRow("No") << "no" << QStringList{"Are you sure want to print?"};
        QTest::newRow("nothing in hand")
            << "none" << QStringList{"Are you sure want to print?", "Inappropriate data! Printing stopped"};
        QTest::newRow("dead printer")
            << "dead" << QStringList{"Are you sure want to print?", fault, fault, fault};
    }
    void printing_refused() {
        QFETCH(QString, situation);
        QFETCH(QStringList, boxes);
        Editor e;
        if (situation != "none") e.open(e.write("r.log", "LOG\r\nsecond\r\nthird\r\n"));
        if (situation == "dead")
            services().printer = std::make_unique<QtPrinter>(
                QtPrinterOptions{.always_pdf = true, .pdf_folder = ss(e.path("missing")), .pdf_name = {}, .tell = false});
        e.t.boxes->answer(situation == "no" ? answer_no : answer_yes);
        e.t.boxes->expect(boxes.size() - 1);
        e.menu("mnuPrint");
        QCOMPARE(e.boxes(), boxes);
        QVERIFY(e.printed().isEmpty());
        QVERIFY(!QApplication::overrideCursor());
    }

    // Options, Convert to CSV: the report in hand is saved first, then the
    // log picked is converted beside itself.
    void conversion_data() {
        QTest::addColumn<QString>("pick");  // the dialog's answer
        QTest::addColumn<QStringList>("boxes");
        QTest::newRow("converted, with the edit saved first") << "r.log" << QStringList{"Successful conversion"};
        QTest::newRow("given up") << ""
                                  << QStringList{"Converting Log file to Spreadsheet format cancelled"};
        QTest::newRow("not a .log name")
            << "r.LOG"
            << QStringList{R"(Invalid Extension - Please select a valid log file with a ".log" extension)"};
    }
    void conversion() {
        QFETCH(QString, pick);
        QFETCH(QStringList, boxes);
        Editor e;
        e.open(e.write("r.log", test_data("logs/single_rate.log")));
        // A row corrected in the editor.
        QString text = e.box()->toPlainText();
        text.replace("00:00:30", "00:00:31");
        e.box()->setPlainText(text);
        shared().run.summary_header_open = true;
        e.t.dialogs->queue(pick.isEmpty() ? "" : ss(e.path(pick)));
        e.t.boxes->expect(boxes.size());
        e.menu("mnuConvertPrn");
        QCOMPARE(e.boxes(), boxes);
        QCOMPARE(e.t.dialogs->requests.back().dialog.title, std::string("CONVERT TO CSV"));
        QVERIFY(!QApplication::overrideCursor());
        QVERIFY(read_text_file(ss(e.path("r.log")))->find("00:00:31") != std::string::npos);
        const auto csv = read_text_file(ss(e.path("r.CSV")));
        QCOMPARE(bool(csv), boxes.first() == "Successful conversion");
        if (csv) QVERIFY(csv->find("00,00,31") != std::string::npos);
        if (!pick.isEmpty()) QCOMPARE(shared().dirs.save_dir, ss(e.work.path()));
    }
};

QTEST_MAIN(tst_report_editor)
#include "tst_report_editor.moc"
