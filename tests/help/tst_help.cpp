// The help: how a topic file becomes the topic window's text, every label
// of both help lists opening its own topic, the texts the console ships,
// and the way out of help.

#include <QtTest>

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "common/forms.h"
#include "common/numbers.h"
#include "common/shared_state.h"
#include "help/frmAbout.h"
#include "help/frmKYTGHelp.h"
#include "help/frmKYTHelp.h"
#include "help/frmKYTOverview.h"
#include "help/help_topics.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

void write_file(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

QString shipped(const QString& file) { return qEnvironmentVariable("KYT_SOURCE_DIR") + "/src/help/texts/" + file; }

}  // namespace

class tst_help : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        forms::register_form<frmKYTHelp>();
        forms::register_form<frmKYTGHelp>();
        forms::register_form<frmKYTOverview>();
    }

    void cleanup() {
        for (const char* f : {"frmKYTHelp", "frmKYTGHelp", "frmKYTOverview"}) forms::unload(f);
        test::flush_deletes();
    }

    // A topic file in a help folder of its own, and the text the window
    // makes of it.
    void filling_data() {
        QTest::addColumn<QString>("context");
        QTest::addColumn<QByteArray>("file");  // empty name: the file is not there
        QTest::addColumn<QString>("text");
        QTest::newRow("no phrase: one paragraph, a trailing blank")
            << "main" << QByteArray("First line.\r\nSecond line.\r\n\r\nThird.\r\n")
            << "First line. Second line.  Third. ";
        QTest::newRow("a phrase mid-line breaks before its line")
            << "main" << QByteArray("Intro.\r\nYou will see: To save the changes press OK.\r\nDone.\r\n")
            << "Intro. \r\n\r\nYou will see: To save the changes press OK. Done. ";
        QTest::newRow("two phrases, two paragraphs")
            << "graph" << QByteArray("Open a log.\r\nOnce the data file has been opened, look.\r\nAlong with the actual graph, figures.")
            << "Open a log. \r\n\r\nOnce the data file has been opened, look. \r\n\r\nAlong with the actual graph, figures. ";
        QTest::newRow("phrases are case-sensitive") << "graph" << QByteArray("a\r\nafter selecting the list\r\n")
                                                    << "a after selecting the list ";
        QTest::newRow("the other context's phrase does not break")
            << "graph" << QByteArray("a\r\nTo save the changes\r\n") << "a To save the changes ";
        QTest::newRow("LF and CR line ends") << "main" << QByteArray("one\ntwo\rthree\r\n") << "one two three ";
        QTest::newRow("code page 1252") << "main" << QByteArray("\x93quoted\x94 5 \xb1 1 \xb0" "C\r\n")
                                        << QString::fromUtf8("\u201cquoted\u201d 5 \u00b1 1 \u00b0C ");
        QTest::newRow("control characters show as blanks") << "main" << QByteArray("a\tb\x00" "c\r\n", 7)
                                                            << "a b c ";
        QTest::newRow("empty file") << "main" << QByteArray("") << "";
    }
    void filling() {
        QFETCH(QString, context);
        QFETCH(QByteArray, file);
        QFETCH(QString, text);
        QTemporaryDir help;
        const HelpContext c = help_context_of(context.toStdString());
        const HelpTopic& topic = help_topics(c)[1];
        write_file(help.filePath(QString::fromLatin1(topic.file.data(), topic.file.size())), file);
        const HelpPage page = load_help_page({help.path().toStdString()}, c, 1);
        QVERIFY(page.found);
        QCOMPARE(QString::fromUtf8(page.text.c_str()), text);
        QCOMPARE(page.caption, std::string(topic.window_caption));
    }

    // What stands in the window where the topic cannot be shown.
    void missing_data() {
        QTest::addColumn<QString>("made");  // what stands under the file's name
        QTest::addColumn<QString>("text");
        QTest::newRow("no file") << "" << "The help file kytmain3.txt is missing from the help folder %1.";
        QTest::newRow("a folder of that name") << "folder" << "The help file kytmain3.txt is missing from the help folder %1.";
        QTest::newRow("a file too large") << "large" << "The help file %1/kytmain3.txt is too large to be a help text.";
    }
    void missing() {
        QFETCH(QString, made);
        QFETCH(QString, text);
        QTemporaryDir help;
        const QString path = help.filePath("kytmain3.txt");
        if (made == "folder") QDir().mkdir(path);
        if (made == "large") {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly) && f.resize(max_help_file_bytes + 1));
        }
        const HelpPage page = load_help_page({help.path().toStdString(), "/nonexistent"}, HelpContext::main, 3);
        QVERIFY(!page.found);
        QCOMPARE(QString::fromStdString(page.text), text.arg(help.path()));
    }

    // Every label of both lists opens its own topic, with the window caption
    // of its topic and the text of its file; Exit Help leaves help.
    void every_label_opens_its_topic_data() {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QString>("exit");
        QTest::newRow("main") << "frmKYTHelp" << "cmdExitHelp";
        QTest::newRow("graph") << "frmKYTGHelp" << "cmdExit";
    }
    void every_label_opens_its_topic() {
        QFETCH(QString, list);
        QFETCH(QString, exit);
        test::install_test_services();
        QTemporaryDir help;
        shared().dirs.help_dir = help.path().toStdString();
        const HelpContext c = list == "frmKYTGHelp" ? HelpContext::graph : HelpContext::main;
        shared().help_topic = c == HelpContext::graph ? "graph" : "main";
        for (const HelpTopic& t : help_topics(c))
            write_file(help.filePath(QString::fromLatin1(t.file.data(), t.file.size())),
                       "Topic " + QByteArray::number(t.page) + ".\r\n");
        QWidget* form = forms::get(list);
        test::show_active(form);
        int labels = 0;
        for (const HelpTopic& t : help_topics(c)) {
            if (t.label.empty()) continue;
            auto* label = form->findChild<QPushButton*>(QString::fromLatin1(t.label.data(), t.label.size()));
            QVERIFY2(label, t.label.data());
            QCOMPARE(label->text(), QString::fromLatin1(t.label_caption.data(), t.label_caption.size()));
            QTest::mouseClick(label, Qt::LeftButton);
            auto* topic = forms::loaded<frmKYTOverview>();
            QVERIFY(topic && topic->isVisible());
            QCOMPARE(topic->windowTitle(), QString::fromLatin1(t.window_caption.data(), t.window_caption.size()));
            QCOMPARE(topic->findChild<QPlainTextEdit*>("txtKYTOverview")->toPlainText(),
                     QString("Topic %1. ").arg(t.page));
            ++labels;
        }
        QCOMPARE(labels, c == HelpContext::graph ? 19 : 8);
        form->findChild<QPushButton*>(exit)->click();
        test::flush_deletes();
        QVERIFY(!forms::find(list));
    }

    // The topic texts the console ships: each there, in the 8-bit code page
    // with CR LF line ends, no placeholder, about its own topic, and each
    // paragraph phrase it holds at the start of a line.
    void shipped_texts_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("about");  // a word the text must hold
        const char* const main_words[] = {"analyser", "Download", "Convert to CSV", "Graph", "Exit",
                                          "Comm", "Test Serial Port", "System Administrator"};
        for (int i = 0; i < 8; ++i) QTest::newRow(qPrintable(QString("kytmain%1").arg(i))) << QString("kytmain%1.txt").arg(i) << main_words[i];
        const char* const graph_words[] = {"graph", "Open", "Time", "Scale", "Time", "Defaults", "Base Rate", "Flow",
                                           "Vol", "Exit", "Image", "Trumpet", "Base Rate", "New Data", "Scale",
                                           "Print", "Save", "Exit", "Print", "Exit"};
        for (int i = 0; i < 20; ++i) QTest::newRow(qPrintable(QString("KYTgra%1").arg(i))) << QString("KYTgra%1.txt").arg(i) << graph_words[i];
    }
    void shipped_texts() {
        QFETCH(QString, file);
        QFETCH(QString, about);
        QFile f(shipped(file));
        QVERIFY2(f.open(QIODevice::ReadOnly), qPrintable(f.fileName()));
        const QByteArray bytes = f.readAll();
        QVERIFY(bytes.size() > 500 && bytes.size() < 8000);
        QVERIFY(bytes.endsWith("\r\n"));
        QCOMPARE(bytes.count('\n'), bytes.count("\r\n"));
        QCOMPARE(bytes.count('\r'), bytes.count("\r\n"));
        const QString text = QString::fromLatin1(bytes);
        for (const char* placeholder : {"TODO", "lorem", "placeholder", "XXX", "TBD"})
            QVERIFY2(!text.contains(placeholder, Qt::CaseInsensitive), placeholder);
        QVERIFY2(text.contains(about), qPrintable(about));
        const HelpContext c = file.startsWith("KYTgra") ? HelpContext::graph : HelpContext::main;
        for (const QString& line : text.split("\r\n")) {
            QVERIFY2(line.size() <= 78, qPrintable(line));
            for (const std::string_view phrase : paragraph_phrases(c)) {
                const QString p = QString::fromLatin1(phrase.data(), phrase.size());
                if (line.contains(p)) QVERIFY2(line.startsWith(p), qPrintable(line));
            }
        }
    }

    void about_box() {
        test::install_test_services();
        frmAbout about;
        const QStringList shown = [&] {
            QStringList l;
            for (QLabel* label : about.findChildren<QLabel*>()) l << label->text();
            return l;
        }();
        for (const QString& t : {QString("Kyt Console"), QString("Corvane Systems Inc."), QString("Version 5.0.0"),
                                 QString::fromStdString(about_notice(local_now().year))})
            QVERIFY2(shown.contains(t), qPrintable(t));
        QCOMPARE(about.windowTitle(), QString("ABOUT KYT"));
    }
};

QTEST_MAIN(tst_help)
#include "tst_help.moc"
