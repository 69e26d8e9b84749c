// kyt-tool capture on a raw recording of the analyser's summary stream: the
// file it writes is what the console's capture stores.

#include <QtTest>

#include "common/file_text.h"
#include "reports/capture.h"
#include "support/kyt_tool_run.h"
#include "support/test_data.h"

using namespace kyt;

namespace {

// The file the capture stores for the whole recording taken in one tick.
QByteArray one_block_file(const QByteArray& recording) {
    Capture c{CaptureSetup{}};
    const CaptureTick t = c.tick(recording.toStdString());
    return t.ended ? QByteArray::fromStdString(t.tempfile_text) : QByteArray("(not ended)");
}

QByteArray file_bytes(const QString& path) { return QByteArray::fromStdString(read_text_file(path.toStdString()).value_or("")); }

// What kyt-tool prints: whether the transfer ended, and an error reply's message.
using Printed = QMap<QString, QString>;
Printed printed(bool ended, ReplyError error = ReplyError::none) {
    Printed p{{"ended", ended ? "yes" : "no"}};
    if (error != ReplyError::none) p.insert("message", reply_error_text(error));
    return p;
}

}  // namespace

class tst_kyt_tool_capture : public QObject {
    Q_OBJECT
private slots:
    // What the tool prints, its exit code and the file it leaves.
    void runs_data() {
        QTest::addColumn<QByteArray>("content");  // the recording
        QTest::addColumn<QString>("raw");
        QTest::addColumn<QStringList>("args");  // {raw} and {dir} stand for the paths
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<Printed>("expected");
        QTest::addColumn<QString>("written");  // the file that must stand beside the recording, if any
        auto row = [](const char* name, const QByteArray& content, const QString& raw, const QStringList& args,
                      int exit_code, const Printed& expected = {}, const QString& written = {}) {
            QTest::newRow(name) << content << raw << args << exit_code << expected << written;
        };
        const QByteArray summary = QByteArray::fromStdString(test_data("logs/analyser_summary.txt"));
        QVERIFY(summary.endsWith('\a'));
        row("summary, 64 a tick", summary, "s.raw", {"{raw}"}, 0, printed(true), "s.dat");
        // A poll's reply ahead of the transfer is told when a tick ends between its CR and LF.
        row("poll reply ahead, CR and LF apart", "e\r\n" + summary, "p.raw", {"{raw}", "--blocks", "2,0,64"}, 0,
            printed(true, ReplyError::not_running), "p.dat");
        row("cut before the end", summary.left(summary.size() - 40), "cut.raw", {"{raw}"}, 1, printed(false));
        row("not connected", "n\r", "n.raw", {"{raw}"}, 2, printed(false, ReplyError::not_connected));
        row("--out names the file", summary, "s.raw", {"--out", "{dir}/report.txt", "{raw}"}, 0, printed(true),
            "report.txt");
        row("a recording without extension", summary, "capture", {"{raw}"}, 0, printed(true), "capture.dat");
        row("no recording named", summary, "s.raw", {}, 3);
        row("recording missing", summary, "s.raw", {"{dir}/none.raw"}, 3);
        row("--blocks \"3,,7\"", summary, "s.raw", {"{raw}", "--blocks", "3,,7"}, 3);
        row("--blocks \"0,0\"", summary, "s.raw", {"{raw}", "--blocks", "0,0"}, 3);
        row("--blocks without a value", summary, "s.raw", {"{raw}", "--blocks"}, 3);
        row("unknown option", summary, "s.raw", {"{raw}", "--fast"}, 3);
        row("output would replace the recording", summary, "s.dat", {"{raw}"}, 3);
        row("output folder missing", summary, "s.raw", {"{raw}", "--out", "{dir}/none/s.dat"}, 3, printed(true));
    }
    void runs() {
        QFETCH(QByteArray, content);
        QFETCH(QString, raw);
        QFETCH(QStringList, args);
        QFETCH(int, exit_code);
        QFETCH(Printed, expected);
        QFETCH(QString, written);
        QTemporaryDir dir;
        QVERIFY(write_text_file(dir.filePath(raw).toStdString(), content.toStdString()));
        for (QString& a : args) a.replace("{raw}", dir.filePath(raw)).replace("{dir}", dir.path());

        const ToolRun r = run_kyt_tool(QStringList{"capture"} + args);
        QCOMPARE(r.exit_code, exit_code);
        QCOMPARE(r.values, expected);
        QCOMPARE(r.lines, QStringList{});
        QCOMPARE(r.error.isEmpty(), exit_code != 3);
        // Nothing but the file asked for is left behind, the recording untouched.
        QStringList left{raw};
        if (!written.isEmpty()) left << written;
        left.sort();
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name), left);
        QCOMPARE(file_bytes(dir.filePath(raw)), content);
        if (!written.isEmpty()) QCOMPARE(file_bytes(dir.filePath(written)), one_block_file(content));
    }
};

QTEST_GUILESS_MAIN(tst_kyt_tool_capture)
#include "tst_kyt_tool_capture.moc"
