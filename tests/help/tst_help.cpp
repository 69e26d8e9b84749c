// The help: a topic file made into the topic window's text, both help lists,
// and the texts the console ships.

#include <QtTest>

#include <QPlainTextEdit>
#include <QPushButton>

#include "common/forms.h"
#include "common/qt_text.h"
#include "common/shared_state.h"
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

    // A topic file in a help folder of its own, and the window's text of it.
    void filling_data() {
        QTest::addColumn<QString>("context");
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("text");
        QTest::newRow("no phrase: one paragraph, a trailing blank")
            << "main" << QByteArray("First line.\r\nSecond line.\r\n\r\nThird.\r\n")
            << "First line. Second line.  Third. ";
        QTest::newRow("a phrase mid-line breaks before its line")
            << "main" << QByteArray("Intro.\r\nYou will see: To save the changes press OK.\r\nDone.\r\n")
            << "Intro. \r\n\r\nYou will see: To save the changes press OK. Done. ";
        QTest::newRow("the other context's phrase does not break")
            << "graph" << QByteArray("a\r\nTo save the changes\r\n") << "a To save the changes ";
        QTest::newRow("LF and CR-only line ends") << "main" << QByteArray("one\ntwo\rthree\r\n") << "one two three ";
        QTest::newRow("code page 1252, control characters as blanks")
            << "main" << QByteArray("\x93quoted\x94\t5 \xb1 1\x01\xb0" "C\r\n")
            << QString::fromUtf8("\u201cquoted\u201d 5 \u00b1 1 \u00b0C ");
    }
    void filling() {
        QFETCH(QString, context);
        QFETCH(QByteArray, file);
        QFETCH(QString, text);
        QTemporaryDir help;
        const HelpContext c = help_context_of(context.toStdString());
        const HelpTopic& topic = help_topics(c)[1];
        write_file(help.filePath(qs(topic.file)), file);
        const HelpPage page = load_help_page({help.path().toStdString()}, c, 1);
        QVERIFY(page.found);
        QCOMPARE(QString::fromUtf8(page.text.c_str()), text);
    }

    // A topic in no folder names the first folder.
    void missing() {
        QTemporaryDir help;
        const std::vector<std::string> folders{help.path().toStdString(), "/nonexistent"};
        const HelpPage page = load_help_page(folders, HelpContext::main, 3);
        QVERIFY(!page.found);
        QCOMPARE(page.text, "The help file kytmain3.txt is missing from the help folder " + folders[0] + ".");
    }

    // Every label of both lists opens its own topic: caption and file's text.
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
        for (const HelpTopic& t : help_topics(c)) write_file(help.filePath(qs(t.file)), "Topic " + QByteArray::number(t.page) + ".\r\n");
        QWidget* form = forms::get(list);
        test::show_active(form);
        for (const HelpTopic& t : help_topics(c)) {
            if (t.label.empty()) continue;
            auto* label = form->findChild<QPushButton*>(qs(t.label));
            QVERIFY2(label, t.label.data());
            QTest::mouseClick(label, Qt::LeftButton);
            auto* topic = forms::loaded<frmKYTOverview>();
            QVERIFY(topic && topic->isVisible());
            QCOMPARE(topic->windowTitle(), qs(t.window_caption));
            QCOMPARE(topic->findChild<QPlainTextEdit*>("txtKYTOverview")->toPlainText(),
                     QString("Topic %1. ").arg(t.page));
        }
        form->findChild<QPushButton*>(exit)->click();
        test::flush_deletes();
        QVERIFY(!forms::find(list));
    }

    // The shipped topic texts: CR LF line ends, no placeholder, lines of at
    // most 78 characters, each paragraph phrase at the start of a line.
    void shipped_texts() {
        for (const HelpContext c : {HelpContext::main, HelpContext::graph})
            for (const HelpTopic& t : help_topics(c)) {
                QFile f(shipped(qs(t.file)));
                QVERIFY2(f.open(QIODevice::ReadOnly), qPrintable(f.fileName()));
                const QByteArray bytes = f.readAll();
                QVERIFY(bytes.size() > 500 && bytes.size() < 8000 && bytes.endsWith("\r\n"));
                QVERIFY(bytes.count('\n') == bytes.count("\r\n") && bytes.count('\r') == bytes.count("\r\n"));
                for (const char* placeholder : {"todo", "lorem", "placeholder", "xxx", "tbd"})
                    QVERIFY2(!bytes.toLower().contains(placeholder), qPrintable(f.fileName()));
                for (const QString& line : QString::fromLatin1(bytes).split("\r\n")) {
                    QVERIFY2(line.size() <= 78, qPrintable(line));
                    for (const std::string_view phrase : paragraph_phrases(c))
                        if (line.contains(qs(phrase))) QVERIFY2(line.startsWith(qs(phrase)), qPrintable(line));
                }
            }
    }
};

QTEST_MAIN(tst_help)
#include "tst_help.moc"
