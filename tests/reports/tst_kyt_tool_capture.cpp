// kyt-tool capture on raw recordings of the simulated analyser's streams: the
// file it writes is what the console's capture stores.

#include <QSerialPort>
#include <QtTest>

#include "common/file_text.h"
#include "common/text.h"
#include "link/protocol.h"
#include "reports/capture.h"
#include "support/analyser_sim.h"
#include "support/kyt_tool_run.h"

using namespace kyt;
using kyt::test::Sim;

namespace {

// Everything the analyser sends for a command, up to the character 7 that
// closes a text stream, as a terminal program would record it.
QByteArray record(const QString& link, const std::string& command) {
    QSerialPort port(link);
    if (!port.open(QIODevice::ReadWrite)) return {};
    port.write(command.data(), static_cast<qint64>(command.size()));
    port.waitForBytesWritten(1000);
    QByteArray got;
    QElapsedTimer t;
    t.start();
    while (!got.contains(BELL) && t.elapsed() < 15000) {
        if (port.bytesAvailable() == 0) port.waitForReadyRead(50);
        got += port.readAll();
    }
    return got;
}

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

    // The recordings by name; how a transfer is cut is tst_capture's matter.
    QMap<QString, QByteArray> recordings_;

private slots:
    void initTestCase() {
        QVERIFY2(QFileInfo::exists(kyt::test::sim_binary()), qPrintable(kyt::test::sim_binary()));
        Sim sim({"--seed", "5"});
        QVERIFY(sim.ready());
        const QByteArray summary = record(sim.link, command_download('A', download_summary));
        QVERIFY(summary.contains("SUMMARY") && summary.endsWith(BELL));
        recordings_["summary"] = summary;
        recordings_["e, then summary"] = "e\r\n" + summary;
    }

    // What the tool prints, its exit code and the file it leaves.
    void runs_data() {
        QTest::addColumn<QByteArray>("content");  // a recording's name, or "summary, cut": the summary without its end
        QTest::addColumn<QString>("raw");
        QTest::addColumn<QStringList>("args");  // {raw} and {dir} stand for the paths
        QTest::addColumn<int>("exit_code");
        QTest::addColumn<Printed>("expected");
        QTest::addColumn<QString>("written");  // the file that must stand beside the recording, if any
        auto row = [](const char* name, const QByteArray& content, const QString& raw, const QStringList& args,
                      int exit_code, const Printed& expected = {}, const QString& written = {}) {
            QTest::newRow(name) << content << raw << args << exit_code << expected << written;
        };
        const QByteArray summary = "summary";
        row("summary, 64 a tick", summary, "s.raw", {"{raw}"}, 0, printed(true), "s.dat");
        row("summary, ticks with nothing", summary, "s.raw", {"{raw}", "--blocks", "3,0,7"}, 0, printed(true), "s.dat");
        // A poll's reply ahead of the transfer is told when a tick ends between its CR and LF.
        row("poll reply ahead, CR and LF apart", "e, then summary", "p.raw", {"{raw}", "--blocks", "2,64"}, 0,
            printed(true, ReplyError::not_running), "p.dat");
        row("cut before the end", "summary, cut", "cut.raw", {"{raw}"}, 1, printed(false));
        row("not connected", "n\r", "n.raw", {"{raw}"}, 2, printed(false, ReplyError::not_connected));
        row("--out names the file", summary, "s.raw", {"--out", "{dir}/report.txt", "{raw}"}, 0, printed(true),
            "report.txt");
        row("a recording without extension", summary, "capture", {"{raw}"}, 0, printed(true), "capture.dat");
        row("no recording named", summary, "s.raw", {}, 3);
        row("recording missing", summary, "s.raw", {"{dir}/none.raw"}, 3);
        for (const char* list : {"3,,7", "0,0"})
            row(qPrintable(QString("--blocks \"%1\"").arg(list)), summary, "s.raw", {"{raw}", "--blocks", list}, 3);
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
        const QByteArray summary = recordings_.value("summary");
        if (recordings_.contains(content)) content = recordings_.value(content);
        if (content == "summary, cut") content = summary.left(summary.size() - 40);
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
