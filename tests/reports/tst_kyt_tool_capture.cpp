// kyt-tool capture on recordings of the simulated analyser's own streams,
// taken raw from its pseudo-terminal: the file it writes is what the
// console's capture stores, however the recording is cut into ticks.

#include <QDir>
#include <QElapsedTimer>
#include <QSerialPort>
#include <QTemporaryDir>
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

// The date line left out, so that two analysers started in different minutes
// compare alike.
QByteArray undated(const QByteArray& text) {
    QByteArray out;
    for (const QByteArray& line : text.split('\n'))
        if (!line.contains("Test Date:")) out += line + '\n';
    return out;
}

QByteArray file_bytes(const QString& path) { return QByteArray::fromStdString(read_text_file(path.toStdString()).value_or("")); }

QStringList entries(const QString& dir) { return QDir(dir).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name); }

// What kyt-tool prints: whether the transfer ended, and the message of an
// error reply.
using Printed = QMap<QString, QString>;
Printed printed(bool ended, ReplyError error = ReplyError::none) {
    Printed p{{"ended", ended ? "yes" : "no"}};
    if (error != ReplyError::none) p.insert("message", reply_error_text(error));
    return p;
}

ToolRun run_capture(const QStringList& args) { return run_kyt_tool(QStringList{"capture"} + args); }

}  // namespace

class tst_kyt_tool_capture : public QObject {
    Q_OBJECT

    // By name: the recording, and what the analyser sent undamaged.
    QMap<QString, QPair<QByteArray, QByteArray>> recordings_;

private slots:
    void initTestCase() {
        QVERIFY2(QFileInfo::exists(kyt::test::sim_binary()), qPrintable(kyt::test::sim_binary()));
        Sim clean({"--seed", "5"});
        Sim damaged({"--seed", "5", "--damage-line-ends"});
        QVERIFY(clean.ready() && damaged.ready());
        const QByteArray summary = record(clean.link, command_download('A', download_summary));
        const QByteArray log = record(clean.link, command_download('A', download_data_log));
        const QByteArray bad_summary = record(damaged.link, command_download('A', download_summary));
        const QByteArray bad_log = record(damaged.link, command_download('A', download_data_log));
        for (const QByteArray& r : {summary, log, bad_summary, bad_log}) QVERIFY(r.endsWith(BELL));
        QVERIFY(summary.contains("SUMMARY") && log.contains("END OF DATA"));
        QVERIFY(!summary.contains("\r\n\n") && bad_summary.contains("\r\n\n") && bad_log.contains("\r\r "));
        recordings_["summary"] = {summary, summary};
        recordings_["log"] = {log, log};
        recordings_["damaged summary"] = {bad_summary, summary};
        recordings_["damaged log"] = {bad_log, log};
        // The "not running" answer to a poll sent before the download.
        recordings_["e, then summary"] = {"e\r\n" + summary, "e\r\n" + summary};
    }

    void splits_data() {
        QTest::addColumn<QString>("recording");
        QTest::addColumn<QString>("blocks");  // empty: the default; {cr}: the size that ends on the first CR
        QTest::addColumn<Printed>("expected");
        const Printed ended = printed(true);
        QTest::newRow("summary, 64 a tick") << "summary" << "" << ended;
        QTest::newRow("summary, a byte a tick") << "summary" << "1" << ended;
        QTest::newRow("summary, ticks with nothing") << "summary" << "3,0,7" << ended;
        QTest::newRow("summary, one huge block") << "summary" << "100000000" << ended;
        QTest::newRow("summary, CR and LF apart") << "summary" << "{cr},64" << ended;
        QTest::newRow("data log, 64 a tick") << "log" << "" << ended;
        QTest::newRow("data log, ticks with nothing") << "log" << "0,3,0,7" << ended;
        QTest::newRow("damaged summary, a byte a tick") << "damaged summary" << "1" << ended;
        QTest::newRow("damaged data log, ticks with nothing") << "damaged log" << "3,0,7" << ended;
        // The reply is told only when a tick ends between its CR and LF.
        QTest::newRow("poll reply ahead, CR and LF apart") << "e, then summary" << "2,64"
                                                           << printed(true, ReplyError::not_running);
        QTest::newRow("poll reply ahead, 64 a tick") << "e, then summary" << "" << ended;
    }
    void splits() {
        QFETCH(QString, recording);
        QFETCH(QString, blocks);
        QFETCH(Printed, expected);
        const auto [bytes, sent] = recordings_.value(recording);
        QTemporaryDir dir;
        const QString raw = dir.filePath("recording.raw");
        QVERIFY(write_text_file(raw.toStdString(), bytes.toStdString()));
        blocks.replace("{cr}", QString::number(bytes.indexOf('\r') + 1));

        const ToolRun r = run_capture(blocks.isEmpty() ? QStringList{raw} : QStringList{raw, "--blocks", blocks});
        QCOMPARE(r.error, QString());
        QCOMPARE(r.values, expected);
        QCOMPARE(r.lines, QStringList{});
        QCOMPARE(r.exit_code, 0);
        QCOMPARE(entries(dir.path()), (QStringList{"recording.dat", "recording.raw"}));
        const QByteArray file = file_bytes(dir.filePath("recording.dat"));

        // What the console stores, however the ticks cut the stream.
        QCOMPARE(file, one_block_file(bytes));
        // A damaged stream stores what the clean one does.
        QCOMPARE(undated(file), undated(one_block_file(sent)));
        // The analyser's lines, in order, up to where the capture stops
        // taking them: 10 characters before its own technician line, or
        // after "END OF DATA".
        const qsizetype tech = sent.indexOf("Tech");
        const QByteArray kept = tech >= 0 ? sent.left(tech - 10) : sent.left(sent.indexOf("END OF DATA") + 11) + "\r\n";
        QVERIFY(kept.size() > 500);
        QVERIFY(undated(file).startsWith(undated(kept).chopped(1)));
        QVERIFY(!file.contains(BELL));
    }

    void exits_data() {
        QTest::addColumn<QByteArray>("content");  // "summary": the recorded one; "summary, cut": without its end
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
        const Printed not_connected = printed(false, ReplyError::not_connected);
        row("cut before the end", "summary, cut", "cut.raw", {"{raw}"}, 1, printed(false));
        row("not connected, n CR", "n\r", "n.raw", {"{raw}"}, 2, not_connected);
        row("not connected, n CR LF in 2-byte blocks", "n\r\n", "n.raw", {"{raw}", "--blocks", "2"}, 2, not_connected);
        row("--out names the file", summary, "s.raw", {"--out", "{dir}/report.txt", "{raw}"}, 0, printed(true),
            "report.txt");
        row("a recording without extension", summary, "capture", {"{raw}"}, 0, printed(true), "capture.dat");
        row("no recording named", summary, "s.raw", {}, 3);
        row("two recordings", summary, "s.raw", {"{raw}", "{raw}"}, 3);
        row("recording missing", summary, "s.raw", {"{dir}/none.raw"}, 3);
        row("recording is a folder", summary, "s.raw", {"{dir}/sub"}, 3);
        for (const char* list : {"3,,7", "3,", "-1", "4,x", "+4", "0,0", "99999999999999999999999", ""})
            row(qPrintable(QString("--blocks \"%1\"").arg(list)), summary, "s.raw", {"{raw}", "--blocks", list}, 3);
        row("--blocks without a value", summary, "s.raw", {"{raw}", "--blocks"}, 3);
        row("unknown option", summary, "s.raw", {"{raw}", "--fast"}, 3);
        row("output would replace the recording", summary, "s.dat", {"{raw}"}, 3);
        row("output folder missing", summary, "s.raw", {"{raw}", "--out", "{dir}/none/s.dat"}, 3, printed(true));
        row("output is a folder", summary, "s.raw", {"{raw}", "--out", "{dir}/sub"}, 3, printed(true));
    }
    void exits() {
        QFETCH(QByteArray, content);
        QFETCH(QString, raw);
        QFETCH(QStringList, args);
        QFETCH(int, exit_code);
        QFETCH(Printed, expected);
        QFETCH(QString, written);
        const QByteArray summary = recordings_.value("summary").first;
        if (content == "summary") content = summary;
        if (content == "summary, cut") content = summary.left(summary.size() - 40);
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir("sub"));
        QVERIFY(write_text_file(dir.filePath(raw).toStdString(), content.toStdString()));
        for (QString& a : args) a.replace("{raw}", dir.filePath(raw)).replace("{dir}", dir.path());

        const ToolRun r = run_capture(args);
        QCOMPARE(r.exit_code, exit_code);
        QCOMPARE(r.values, expected);
        QCOMPARE(r.lines, QStringList{});
        QCOMPARE(r.error.isEmpty(), exit_code != 3);
        // Nothing but the file asked for is left behind, the recording untouched.
        QStringList left{raw, "sub"};
        if (!written.isEmpty()) left << written;
        left.sort();
        QCOMPARE(entries(dir.path()), left);
        QVERIFY(entries(dir.filePath("sub")).isEmpty());
        QCOMPARE(file_bytes(dir.filePath(raw)), content);
        if (!written.isEmpty()) QCOMPARE(file_bytes(dir.filePath(written)), one_block_file(content));
    }
};

QTEST_GUILESS_MAIN(tst_kyt_tool_capture)
#include "tst_kyt_tool_capture.moc"
