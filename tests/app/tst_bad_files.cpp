// Every place that reads a file, given the same bad files: a bad one is told in the place's own words and
// nothing is written; changed line ends or a name outside ASCII read as the original.

#include <sys/stat.h>

#include <QtTest>

#include "app/frmMain.h"
#include "common/file_text.h"
#include "common/qt_text.h"
#include "graph/frmGraph.h"
#include "graph/log_reader.h"
#include "help/frmKYTHelp.h"
#include "help/frmKYTOverview.h"
#include "reports/frmReports.h"
#include "support/form_script.h"
#include "support/no_read_permission.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

const QStringList kinds = {"empty", "binary", "cut mid-line", "LF line ends", "CR line ends", "100 MB",
                           "folder", "unreadable", "non-ASCII name", "non-ASCII name, binary"};
const QString non_ascii = QString::fromUtf8("Pumpe-Prüfung-µ");
const QString source_dir = qEnvironmentVariable("KYT_SOURCE_DIR");

// A file's bytes; a relative path from the source tree.
QByteArray bytes_of(const QString& path) {
    QFile f(QDir(source_dir).filePath(path));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Every entry under the folder with a digest of its bytes.
QStringList listing(const QString& folder) {
    QStringList out;
    for (QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
         it.hasNext();) {
        QFile f(it.next());
        QCryptographicHash sha(QCryptographicHash::Sha1);
        if (f.open(QIODevice::ReadOnly)) sha.addData(&f);
        out << f.fileName() + " " + sha.result().toHex();
    }
    out.sort();
    return out;
}

void rows(const QStringList& messages) {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("message");  // told, "<file>" for the path; empty: taken
    for (int i = 0; i < kinds.size(); ++i) QTest::newRow(qPrintable(kinds[i])) << kinds[i] << messages[i];
}

void menu(QWidget* form, const char* action) { form->findChild<QAction*>(action)->trigger(); }

// One row of a table: its bad file in a folder of its own.
struct Row {
    QString kind = *static_cast<QString*>(QTest::qData("kind", QMetaType::QString));
    QString message = *static_cast<QString*>(QTest::qData("message", QMetaType::QString));
    test::TestServices t = test::install_test_services();
    QTemporaryDir work;
    QString path;
    QStringList before;  // the folder's listing once the file is made

    // The row's bad file made from `good` (CR LF line ends) as `name`, "pump" outside ASCII in those rows.
    void make(QString name, const QByteArray& good) {
        path = work.filePath(kind.startsWith("non-ASCII") ? name.replace("pump", non_ascii) : name);
        QDir().mkpath(QFileInfo(path).path());
        if (kind == "folder") QVERIFY(QDir().mkdir(path));
        QByteArray bytes = kind == "empty" ? QByteArray() : good;
        if (kind == "cut mid-line") bytes.truncate(good.indexOf('\r', good.size() / 2) - 12);
        if (kind == "LF line ends") bytes.replace("\r\n", "\n");
        if (kind == "CR line ends") bytes.replace("\r\n", "\r");
        if (kind.endsWith("binary")) {
            QRandomGenerator random(7);
            bytes.resize(4096);
            for (qsizetype i = 0; i < bytes.size(); ++i) bytes[i] = i % 64 ? char(random.bounded(256)) : '\0';
            bytes.replace('L', '\0');  // no "LOG" by chance
        }
        QFile f(path);
        if (kind != "folder") QVERIFY(f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size());
        if (kind == "100 MB") QVERIFY(f.resize(100 << 20));
        f.close();
        before = listing(work.path());
    }
    // A good file from the source tree opened first.
    void open_first(QWidget* form, const QString& good) {
        t.dialogs->queue(ss_file(source_dir + good));
        menu(form, "mnuOpen");
    }
    // Runs `act` and checks the message shows `boxes` times; a name outside ASCII goes through the real dialog.
    void run(const std::function<void()>& act, int boxes = 1) {
        const test::NoReadPermission guard(kind == "unreadable" ? ss_file(path) : "");
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            auto* d = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!d) return;
            d->findChild<QLineEdit*>("fileNameEdit")->setText(path);
            QMetaObject::invokeMethod(d, "accept", Qt::DirectConnection);
        });
        if (kind.startsWith("non-ASCII")) {
            services().dialogs = std::make_unique<QtFileDialogs>();
            poll.start(10);
        } else {
            t.dialogs->queue(ss_file(path));
        }
        const int expected = message.isEmpty() ? 0 : boxes;
        t.boxes->expect(expected);
        act();
        QStringList told;
        for (const auto& b : t.boxes->shown) told << qs(b.text);
        QCOMPARE(told, QStringList(expected, QString(message).replace("<file>", QDir::toNativeSeparators(path))));
    }
};

// The graph's figures and flow series.
QStringList graph_view(QWidget* f) {
    QStringList v{QString::number(qHashRange(graph_series().graph_flow.begin(), graph_series().graph_flow.end()))};
    for (QLabel* l : f->findChildren<QLabel*>()) v << l->text();
    return v;
}

const QString not_report = "Invalid file!  The file is not a LOG or a SUMMARY file.";
const QString no_csv = "Unsuccessful conversion, please try again or check the help screens for further assistance";
const QString few_points = "Insufficient number of Graph Points";
const QString no_log = "Error opening LOG file for graphing, graphing cancelled";
const QString ini_damaged = "The settings file <file> could not be read; it was kept as <file>.damaged, and the "
                            "console starts from its defaults.";
const QString ini_unwritable = "The settings file <file> could not be written.";

}  // namespace

class tst_bad_files : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        forms::register_form<frmKYTHelp>();
        forms::register_form<frmKYTOverview>();
    }
    void cleanup() {
        for (const char* f : {"frmReports", "frmGraph", "frmKYTHelp", "frmKYTOverview", "frmMain"}) forms::unload(f);
        test::flush_deletes();
    }

    // A named pipe picked as a file is refused at once instead of waiting for a writer.
    void a_pipe_is_no_file() {
        QTemporaryDir work;
        const QString pipe = work.filePath("pump.log");
        QVERIFY(mkfifo(qPrintable(pipe), 0600) == 0);
        QVERIFY(!read_text_file(ss_file(pipe)).has_value());
    }

    void editor_open_data() {
        rows({not_report, not_report, "", "", "",
              "The file <file> is too large to be a report (100 MB); the editor takes reports up to 16 MB.",
              "Bad file name entered", "Bad file name entered", "", not_report});
    }
    void editor_open() {
        Row r;
        auto* form = test::open_fresh<frmReports>();
        form->show_as_editor();
        const QByteArray good = bytes_of("tests/data/logs/single_rate.log");
        r.make("pump.log", good);
        r.run([&] { menu(form, "mnuOpen"); });
        const QByteArray as_read = r.kind == "cut mid-line" ? bytes_of(r.path) + "\r\n" : good;
        QCOMPARE(form->findChild<QPlainTextEdit*>("txtData")->toPlainText(),
                 r.message.isEmpty() ? QString::fromLatin1(as_read).replace("\r\n", "\n") : "");
        if (r.message.isEmpty()) QCOMPARE(form->windowTitle(), "REPORT - " + r.path);
        QCOMPARE(listing(r.work.path()), r.before);
    }

    // A log cut short leaves what was converted; nothing else bad writes a spreadsheet file.
    void csv_conversion_data() {
        const QString done = "Successful conversion", unopened = "Unable to open file";
        rows({no_csv, no_csv, no_csv, done, done, unopened, unopened, unopened, done, no_csv});
    }
    void csv_conversion() {
        Row r;
        auto* form = test::open_fresh<frmReports>();
        form->show_as_editor();
        r.open_first(form, "/tests/data/reports/summary.sum");
        r.make("pump.log", bytes_of("tests/data/logs/single_rate.log"));
        r.run([&] { menu(form, "mnuConvertPrn"); });
        QFile csv(r.path.chopped(4) + ".CSV");
        const bool converted = r.message.startsWith("Successful");
        QCOMPARE(csv.exists(), converted || r.kind == "cut mid-line");
        if (csv.open(QIODevice::ReadOnly)) {
            const QByteArray whole = bytes_of("tests/data/reports/single_rate.CSV"), written = csv.readAll();
            QVERIFY(converted ? written == whole : written.size() > 2 && whole.startsWith(written.chopped(2)));
            QVERIFY(csv.remove());
        }
        QCOMPARE(listing(r.work.path()), r.before);
    }

    // Over a log on show, which a refused file leaves as it was.
    void graph_open_data() {
        rows({few_points, few_points, "Data record with fewer than five fields in line 76; graphing cancelled", "", "",
              no_log, no_log, no_log, "", few_points});
    }
    void graph_open() {
        Row r;
        frmGraph* form = test::open_fresh<frmGraph>();
        r.open_first(form, "/tests/data/graph/single_rate_45min.log");
        const QStringList view = graph_view(form);
        const QString title = form->windowTitle();
        r.make("pump.log", bytes_of("tests/data/graph/single_rate_45min.log"));
        r.run([&] { menu(form, "mnuOpen"); });
        QCOMPARE(graph_view(form), view);
        QCOMPARE(form->windowTitle(), r.message.isEmpty() ? "DATA LOG GRAPH - [ " + r.path.toLower() + " ]" : title);
        QCOMPARE(listing(r.work.path()), r.before);
    }

    // The topic window says what is wrong with its file.
    void help_topic_data() {
        const QString binary = "The help file <file> is not a text file.";
        rows({"The help file <file> is empty.", binary, "", "", "", "The help file <file> is too large to be a help text.",
              "The help file kytmain1.txt is missing from the help folder <folder>.",
              "The help file <file> cannot be read.", "", binary});
    }
    void help_topic() {
        Row r;
        QWidget* list = forms::get("frmKYTHelp");
        test::show_active(list);
        const auto topic = [&](const QString& folder) {
            shared().dirs.help_dir = ss_file(folder);
            list->findChild<QPushButton*>("lblFileDownload")->click();
            return forms::loaded<frmKYTOverview>()->findChild<QPlainTextEdit*>("txtKYTOverview")->toPlainText();
        };
        const QString original = topic(source_dir + "/src/help/texts");
        r.make("pump-help/kytmain1.txt", bytes_of("src/help/texts/kytmain1.txt"));
        const QString folder = QFileInfo(r.path).path();
        QString shown;
        r.run([&] { shown = topic(folder); }, 0);
        if (r.kind == "cut mid-line") QVERIFY(shown.size() > 100 && original.startsWith(shown.chopped(1)));
        else QCOMPARE(shown, r.message.isEmpty() ? original : r.message.replace("<file>", r.path).replace("<folder>", folder));
        QCOMPARE(listing(r.work.path()), r.before);
    }

    // kyt.ini at start-up, then a setting saved: defaults where unreadable, a damaged file kept aside and told.
    void settings_at_start_data() {
        rows({"", ini_damaged, "", "", "", ini_damaged, ini_unwritable, ini_unwritable, "", ini_damaged});
    }
    void settings_at_start() {
        Row r;
        const QString start = r.work.filePath(r.kind.startsWith("non-ASCII") ? non_ascii : "start");
        QVERIFY(QDir().mkpath(start) && QDir::setCurrent(start));
        r.make("pump-home/.config/kyt-console/kyt.ini", "[Startup]\r\ncomm=3\r\nseries=D\r\n[Ports]\r\ncomm1=/dev/serial/"
               "by-id/usb-Serial_Adapter_A600abcd-if00-port0\r\ncomm3=/dev/ttyS2\r\n");
        services().settings = std::make_unique<IniSettingsStore>(QFileInfo(r.path).path());
        r.run([&] {
            forms::get<frmMain>();
            services().settings->save_setting("kyt", "Startup", "series", "A");
            save_settings_now();
        }, r.message == ini_unwritable ? 2 : 1);
        QDir::setCurrent(QDir::tempPath());
        const bool read = r.message.isEmpty() && r.kind != "empty";
        QCOMPARE(shared().port.comm_port, read ? 3 : 2);
        QCOMPARE(shared().port.series, read ? 'D' : 'C');
        QCOMPARE(shared().dirs.help_dir, ss_file(start + "/help"));
        // A file that cannot be written stays as it was; a damaged one is kept whole under its new name.
        const QStringList after = listing(r.work.path());
        if (r.message == ini_damaged)
            QVERIFY(after.contains(r.before.filter("kyt.ini ").value(0).replace("kyt.ini ", "kyt.ini.damaged ")));
        QCOMPARE(after == r.before, r.message == ini_unwritable);
        if (r.message == ini_unwritable) return;
        QVERIFY(bytes_of(r.path).contains("series=A"));
        QCOMPARE(bytes_of(r.path).contains("comm3=/dev/ttyS2"), read && r.kind != "cut mid-line");
    }
};

QTEST_MAIN(tst_bad_files)
#include "tst_bad_files.moc"
