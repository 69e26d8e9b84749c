// The report editor on real files in a temporary folder; prints go to PDF
// files read back with poppler's tools.

#include <QtTest>

#include <QAction>
#include <QClipboard>
#include <QPlainTextEdit>

#include "common/file_text.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "reports/frmReports.h"
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
    // The boxes shown, each checked by the start of its text.
    bool told(const QStringList& starts) const {
        if (t.boxes->shown.size() != std::size_t(starts.size())) return false;
        for (int i = 0; i < starts.size(); ++i)
            if (!qs(t.boxes->shown[std::size_t(i)].text).startsWith(starts[i])) return false;
        return true;
    }
    QStringList entries() const { return QDir(work.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries); }
};

const QString not_report = "Invalid file!  The file is not a LOG or a SUMMARY file.";

}  // namespace

class tst_report_editor : public QObject {
    Q_OBJECT
private slots:
    // What File, Open makes of a file; a file that is no report leaves the
    // editor usable and nothing written.
    void open_data() {
        QTest::addColumn<QString>("file");  // written into the folder; blanks: no file
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QString>("shown");  // the box's text afterwards
        QTest::newRow("a summary") << "a.sum" << QByteArray("SUMMARY\r\nRate 1\r\n") << QStringList{}
                                   << "SUMMARY\nRate 1\n";
        QTest::newRow("LOG inside a word, bare line ends made whole")
            << "a.dat" << QByteArray("CATALOG\nlast") << QStringList{} << "CATALOG\nlast\n";
        QTest::newRow("not a report") << "a.txt" << QByteArray("hello\r\n") << QStringList{not_report} << "";
        QTest::newRow("a name of blanks") << "   " << QByteArray() << QStringList{"CancelOpen"} << "";
    }
    void open() {
        QFETCH(QString, file);
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, boxes);
        QFETCH(QString, shown);
        Editor e;
        const QString name = file.trimmed().isEmpty() ? file : e.write(file, bytes.toStdString());
        const QStringList before = e.entries();
        e.t.boxes->expect(boxes.size());
        e.open(name);
        QVERIFY(e.told(boxes));
        QCOMPARE(e.box()->toPlainText(), shown);
        const bool editable = boxes.isEmpty();  // Save And Exit and the edit entries
        QCOMPARE(e.form->findChild<QAction*>("mnuClose")->isEnabled(), editable);
        QCOMPARE(e.form->findChild<QAction*>("mnuCut")->isEnabled(), editable);
        if (editable) QCOMPARE(e.form->windowTitle(), "REPORT - " + name);
        if (boxes.contains(not_report)) QCOMPARE(e.form->windowTitle(), QString("REPORT - file"));
        QCOMPARE(e.entries(), before);
    }

    // Save And Exit and Convert to CSV store the text as edited (with Paste;
    // the conversion first, then of the file picked); Quit stores nothing; a
    // folder gone keeps the text in the editor.
    void saving_data() {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QString>("stored");  // what out/r.log holds afterwards: "edited", "original" or ""
        QTest::newRow("Save And Exit") << "mnuClose" << "edited";
        QTest::newRow("Quit - no save") << "mnuQuit" << "original";
        QTest::newRow("Convert to CSV") << "mnuConvertPrn" << "edited";
        QTest::newRow("Save And Exit, folder gone") << "gone" << "";
    }
    void saving() {
        QFETCH(QString, way);
        QFETCH(QString, stored);
        Editor e;
        const std::string original = test_data("logs/single_rate.log");
        QDir(e.work.path()).mkdir("out");
        e.open(e.write("out/r.log", original));
        QGuiApplication::clipboard()->setText("Checked ");
        e.box()->moveCursor(QTextCursor::Start);
        e.menu("mnuPaste");
        QStringList boxes;
        if (way == "gone") boxes << "The report could not be saved as ";
        if (way == "mnuConvertPrn") boxes << "Successful conversion";
        if (way == "gone") QDir(e.path("out")).removeRecursively();
        e.t.boxes->expect(boxes.size());
        shared().run.summary_header_open = true;  // a download has opened a report with a header
        if (way == "mnuConvertPrn") e.t.dialogs->queue(ss(e.path("out/r.log")));
        e.menu(qPrintable(way == "gone" ? "mnuClose" : way));
        test::flush_deletes();
        QVERIFY(e.told(boxes));
        QCOMPARE(forms::is_loaded<frmReports>(), way != "mnuClose" && way != "mnuQuit");
        QVERIFY(!QApplication::overrideCursor());
        if (way == "gone") QVERIFY(e.box()->toPlainText().startsWith("Checked "));
        const auto text = read_text_file(ss(e.path("out/r.log")));
        QCOMPARE(text.has_value(), !stored.isEmpty());
        if (text) QCOMPARE(*text, stored == "edited" ? "Checked " + original : original);
        if (way == "mnuConvertPrn")
            QVERIFY(read_text_file(ss(e.path("out/r.CSV"))).value_or("").starts_with("Checked "));
    }

    // A print after Yes, read back from the PDF; no report in hand stops one.
    void printing_data() {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<QStringList>("boxes");
        const QString asked = "Are you sure want to print?";
        QTest::newRow("a data log of three pages") << "yes" << QStringList{asked};
        QTest::newRow("nothing in hand") << "none" << QStringList{asked, "Inappropriate data! Printing stopped"};
    }
    void printing() {
        QFETCH(QString, situation);
        QFETCH(QStringList, boxes);
        Editor e;
        const QString file = e.write("r.log", test_data("logs/single_rate.log"));
        if (situation != "none") e.open(file);
        e.t.boxes->answer(answer_yes);
        e.t.boxes->expect(boxes.size() - 1);
        e.menu("mnuPrint");
        QVERIFY(e.told(boxes));
        QVERIFY(!QApplication::overrideCursor());
        const QStringList printed = QDir(e.pdfs.path()).entryList({"*.pdf"});
        QCOMPARE(printed.size(), situation == "yes" ? 1 : 0);
        if (situation != "yes") return;
        const QString pdf = e.pdfs.filePath(printed.first());
        QCOMPARE(test::page_count(pdf), 3);
        const QStringList texts = test::page_texts(pdf);
        for (int i = 0; i < 3; ++i) {
            QVERIFY2(texts.value(i).simplified().contains(QString("p. 0%1").arg(i + 1)), qPrintable(texts.value(i)));
            // Every page but the first carries the file's name at its head.
            if (i > 0) QVERIFY2(texts[i].contains("Filename") && texts[i].contains(file), qPrintable(texts[i]));
        }
    }
};

QTEST_MAIN(tst_report_editor)
#include "tst_report_editor.moc"
