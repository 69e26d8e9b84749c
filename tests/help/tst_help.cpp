// The help: a topic file made into the topic window's text.

#include <QtTest>

#include "common/qt_text.h"
#include "help/help_topics.h"

using namespace kyt;

namespace {

void write_file(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

}  // namespace

class tst_help : public QObject {
    Q_OBJECT
private slots:
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
};

QTEST_APPLESS_MAIN(tst_help)
#include "tst_help.moc"
