// The simulated analyser, run as a program and spoken to through its
// pseudo-terminal with the serial port class the console itself uses.

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <functional>

#include "graph/log_reader.h"
#include "link/protocol.h"
#include "reports/capture.h"
#include "support/analyser_sim.h"

using namespace kyt;
using kyt::test::Sim;
using kyt::test::sim_binary;

namespace {

std::string bytes_of(const QByteArray& b) { return std::string(b.constData(), static_cast<std::size_t>(b.size())); }

// The console's side of the line.
class Port {
public:
    bool open(const QString& name) {
        port.setPortName(name);
        if (!port.open(QIODevice::ReadWrite)) return false;
        port.setBaudRate(9600);
        port.setDataBits(QSerialPort::Data8);
        port.setParity(QSerialPort::NoParity);
        port.setStopBits(QSerialPort::OneStop);
        return true;
    }

    void send(const QByteArray& command) {
        port.write(command);
        port.waitForBytesWritten(1000);
    }

    // Reads until `done` holds for what came, or the time is up. Each piece
    // read is kept with the time it came at.
    QByteArray read_until(const std::function<bool(const QByteArray&)>& done, int ms = 3000) {
        QByteArray got;
        QElapsedTimer t;
        t.start();
        while (!done(got) && t.elapsed() < ms) {
            if (port.bytesAvailable() == 0) port.waitForReadyRead(20);
            const QByteArray piece = port.readAll();
            if (!piece.isEmpty()) {
                got += piece;
                pieces << piece;
                arrivals << t.elapsed();
            }
        }
        return got;
    }
    QByteArray read_for(int ms) {
        return read_until([](const QByteArray&) { return false; }, ms);
    }

    // A command and its reply: up to its line end, or up to the character 7
    // that closes a text stream.
    QByteArray ask(const QByteArray& command, int ms = 3000, bool stream = false) {
        pieces.clear();
        arrivals.clear();
        send(command + "\r");
        return read_until(
            [stream](const QByteArray& b) {
                return b.contains('\x07') || (!stream && ((b.size() == 2 && b.endsWith('\r')) || b.endsWith("\r\n")));
            },
            ms);
    }
    QByteArray stream(const QByteArray& command) { return ask(command, 15000, true); }

    QSerialPort port;
    QList<QByteArray> pieces;  // the reads of the last reply, as they came
    QList<qint64> arrivals;    // and when, in ms after the command
};

// The text the console keeps: the stream less its character 7.
QByteArray without_bell(QByteArray b) { return b.left(b.indexOf('\x07')); }

// The lines of a report, with the line whose text is the date taken out so
// that two runs started in different minutes compare alike.
QByteArray undated(const QByteArray& report) {
    QByteArray out;
    for (const QByteArray& line : report.split('\n'))
        if (!line.contains("Test Date:")) out += line + '\n';
    return out;
}

int seconds_of(const QByteArray& hhmmss) {
    const auto p = hhmmss.split(':');
    return p.size() == 3 ? p[0].toInt() * 3600 + p[1].toInt() * 60 + p[2].toInt() : -1;
}

}  // namespace

class tst_analyser_sim : public QObject {
    Q_OBJECT

    // Channels A to C carry a pump, D none.
    std::unique_ptr<Sim> shared_;
    Port port_;

private slots:
    void initTestCase() {
        QVERIFY2(QFileInfo::exists(sim_binary()), qPrintable(sim_binary()));
        shared_ = std::make_unique<Sim>(QStringList{"--channels", "ABC", "--speed", "60"});
        QVERIFY(shared_->ready());
        QVERIFY2(port_.open(shared_->link), qPrintable(port_.port.errorString()));
    }

    void replies_data() {
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<QByteArray>("expected");
        const QByteArray pattern = QByteArray(test_pattern_first_line.data()) + "\r\n" +
                                   QByteArray(test_pattern_second_line.data()) + "\r\n";
        QTest::newRow("poll with no test running") << QByteArray("GRA\r") << QByteArray("e\r");
        QTest::newRow("poll ended by LF alone") << QByteArray("GRB\n") << QByteArray("e\r");
        QTest::newRow("unknown command") << QByteArray("XYZ\r") << QByteArray("?\r");
        QTest::newRow("lower case is unknown") << QByteArray("gra\r") << QByteArray("?\r");
        QTest::newRow("no such channel") << QByteArray("GRE\r") << QByteArray("?\r");
        QTest::newRow("no such test") << QByteArray("RTA9\r") << QByteArray("?\r");
        QTest::newRow("no such download") << QByteArray("DLA4\r") << QByteArray("?\r");
        QTest::newRow("print with another number") << QByteArray("PRA2\r") << QByteArray("?\r");
        QTest::newRow("stop with a tail") << QByteArray("STAX\r") << QByteArray("?\r");
        QTest::newRow("poll, channel without pump") << QByteArray("GRD\r") << QByteArray("n\r");
        QTest::newRow("start, channel without pump") << QByteArray("RTD1\r") << QByteArray("n\r");
        QTest::newRow("summary, channel without pump") << QByteArray("DLD1\r") << QByteArray("n\r");
        QTest::newRow("stop, channel without pump") << QByteArray("STD\r") << QByteArray("n\r");
        QTest::newRow("test pattern") << QByteArray("DLA3\r") << pattern;
        QTest::newRow("test pattern on any channel") << QByteArray("DLD3\r") << pattern;
        QTest::newRow("print is taken in silence") << QByteArray("PRA1\r") << QByteArray();
        QTest::newRow("stop with no test, silence") << QByteArray("STB\r") << QByteArray();
        QTest::newRow("empty lines are no commands") << QByteArray("\r\n\r") << QByteArray();
    }
    void replies() {
        QFETCH(QByteArray, sent);
        QFETCH(QByteArray, expected);
        port_.port.clear();
        port_.send(sent);
        QByteArray got = port_.read_until([&](const QByteArray& b) { return !expected.isEmpty() && b.size() >= expected.size(); },
                                          expected.isEmpty() ? 700 : 3000);
        got += port_.read_for(60);
        QCOMPARE(got, expected);
    }

    // A test started with "RT" or attached with "GR" answers each poll with
    // its newest data in the console's field order, until "ST".
    void live_test_data() {
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<bool>("occlusion");
        QTest::newRow("single rate, started") << QByteArray("RTB1") << false;
        QTest::newRow("single rate, attached") << QByteArray("GRB1") << false;
        QTest::newRow("occlusion, started") << QByteArray("RTC4") << true;
        QTest::newRow("occlusion, attached") << QByteArray("GRC4") << true;
    }
    void live_test() {
        QFETCH(QByteArray, start);
        QFETCH(bool, occlusion);
        const QByteArray channel = start.mid(2, 1);
        const QRegularExpression shape(occlusion ? R"(^O, \d+, \d+, \d+\.\d\d, \d+\r\n$)"
                                                 : R"(^[ABC], \d+, \d+, \d+, \d+\.\d\d, \d+\.\d\d, \d+\.\d{3}, -?[\d.]+\r\n$)");
        port_.port.clear();
        port_.send(start + "\r");
        QCOMPARE(port_.read_for(300), QByteArray());
        int last_seconds = -1;
        double first_value = -1, last_value = -1;
        for (int poll = 0; poll < 4; ++poll) {
            QTest::qWait(400);
            const QByteArray reply = port_.ask("GR" + channel);
            QVERIFY2(shape.match(QString::fromLatin1(reply)).hasMatch(), reply.constData());
            int seconds;
            double value;  // volume of a single-rate test, pressure of an occlusion test
            if (occlusion) {
                const auto p = process_ot_data(bytes_of(reply));
                QVERIFY(p.ok());
                seconds = p.data.minutes * 60 + p.data.seconds;
                value = p.data.psi;
                QVERIFY(qAbs(p.data.mmhg - p.data.psi * 51.7149) <= 0.8);  // PSI to 0.01, mmHg whole
            } else {
                const auto p = process_rt_data(bytes_of(reply));
                QVERIFY(p.ok());
                QVERIFY(p.data.minutes < 60 && p.data.seconds < 60);
                seconds = p.data.hours * 3600 + p.data.minutes * 60 + p.data.seconds;
                value = p.data.volume;
                // The average flow is the volume over the elapsed time.
                if (seconds >= 10) QVERIFY(qAbs(p.data.avg_flow - p.data.volume * 3600 / seconds) < 0.05 * p.data.avg_flow + 0.1);
            }
            QVERIFY2(seconds > last_seconds, reply.constData());
            QVERIFY2(value >= last_value - 0.1, reply.constData());  // volume grows, pressure builds
            last_seconds = seconds;
            last_value = value;
            if (first_value < 0) first_value = value;
        }
        // Volume is delivered; pressure builds in the closed line.
        QVERIFY2(last_value > first_value + (occlusion ? 1.0 : 0.5), qPrintable(QString("%1 to %2").arg(first_value).arg(last_value)));
        port_.send("ST" + channel + "\r");
        QCOMPARE(port_.read_for(300), QByteArray());
        QCOMPARE(port_.ask("GR" + channel), QByteArray("e\r"));
    }

    // Attaching to a test that runs leaves it running: its time goes on.
    void attach_keeps_running_test() {
        port_.port.clear();
        port_.send("RTA1\r");
        QTest::qWait(1200);
        port_.send("GRA1\r");
        QTest::qWait(100);
        const auto p = process_rt_data(bytes_of(port_.ask("GRA")));
        QVERIFY(p.ok());
        QVERIFY2(p.data.minutes >= 1, "the attach restarted the test");
        port_.send("STA\r");
    }

    // The console may close its port and open it again: the line stays up.
    void reopen() {
        port_.port.close();
        QVERIFY(port_.open(shared_->link));
        QCOMPARE(port_.ask("GRD"), QByteArray("n\r"));
    }

    // The pump model seen over a long test: the rate, its range letter and
    // the occlusion plateau follow the pump's settings.
    void pump_model_data() {
        QTest::addColumn<QString>("rates");
        QTest::addColumn<QByteArray>("channel");
        QTest::addColumn<char>("range");
        QTest::addColumn<double>("rate");
        QTest::newRow("low range") << "A=10,B=250" << QByteArray("A") << 'A' << 10.0;
        QTest::newRow("high range") << "A=10,B=250" << QByteArray("B") << 'B' << 250.0;
        QTest::newRow("default rate") << "A=10,B=250" << QByteArray("C") << 'B' << 100.0;
        QTest::newRow("pulsatile, slow pump") << "2" << QByteArray("D") << 'C' << 2.0;
    }
    void pump_model() {
        QFETCH(QString, rates);
        QFETCH(QByteArray, channel);
        QFETCH(char, range);
        QFETCH(double, rate);
        Sim sim({"--rate", rates, "--speed", "6000"});
        QVERIFY(sim.ready());
        Port port;
        QVERIFY(port.open(sim.link));
        port.send("RT" + channel + "1\r");
        QTest::qWait(800);  // more than an hour of test time
        const auto p = process_rt_data(bytes_of(port.ask("GR" + channel)));
        QVERIFY(p.ok());
        QCOMPARE(p.data.range, range);
        QVERIFY(p.data.hours >= 1);
        // A pump delivers its set rate within a few per cent.
        QVERIFY2(qAbs(p.data.avg_flow - rate) < 0.05 * rate, qPrintable(QString::number(p.data.avg_flow)));
        QVERIFY(qAbs(p.data.flow - rate) < 0.6 * rate);

        // An occlusion test levels off at the pump's stall pressure.
        port.send("RT" + channel + "4\r");
        QTest::qWait(800);
        const double late = process_ot_data(bytes_of(port.ask("GR" + channel))).data.psi;
        QTest::qWait(500);
        const double later = process_ot_data(bytes_of(port.ask("GR" + channel))).data.psi;
        QVERIFY2(late >= 10 && late <= 19, qPrintable(QString::number(late)));
        QVERIFY(qAbs(later - late) < 0.5);
    }

    // At 600 simulated seconds a real second, an hour of test takes about
    // six seconds, and the data log then holds the whole hour, row by row.
    void sixty_minute_test() {
        Sim sim({"--speed", "600"});
        QVERIFY(sim.ready());
        Port port;
        QVERIFY(port.open(sim.link));
        QElapsedTimer real;
        port.send("RTA1\r");
        real.start();
        int elapsed = 0;
        while (elapsed < 3600 && real.elapsed() < 20000) {
            QTest::qWait(250);
            const double sent = real.elapsed() / 1000.0;
            const auto p = process_rt_data(bytes_of(port.ask("GRA")));
            const double answered = real.elapsed() / 1000.0;
            QVERIFY(p.ok());
            elapsed = p.data.hours * 3600 + p.data.minutes * 60 + p.data.seconds;
            // The analyser's time lies between the poll and its answer, less
            // what the start command took to arrive (up to a second on a
            // busy machine).
            QVERIFY2(elapsed >= 600 * (sent - 1.0) - 1 && elapsed <= 600 * answered,
                     qPrintable(QString("%1 s of test between %2 s and %3 s").arg(elapsed).arg(sent).arg(answered)));
        }
        QVERIFY(elapsed >= 3600);
        port.send("STA\r");
        QTest::qWait(100);

        const QByteArray log = port.stream("DLA2");
        QVERIFY(log.endsWith("END OF DATA\x07"));
        const QByteArray text = without_bell(log);
        const QList<QByteArray> lines = text.split('\n');
        for (qsizetype i = 0; i + 1 < lines.size(); ++i) QVERIFY2(lines[i].endsWith('\r'), lines[i].constData());

        QStringList marks;
        QList<int> rows;
        for (qsizetype i = 0; i < lines.size(); ++i) {
            const QByteArray t = lines[i].trimmed();
            for (const char* mark : {"MAROVANT 4500-K", "SINGLE RATE TEST", "Elapsed", "Time"})
                if (t.startsWith(mark)) marks << mark;
            if (t == "\f") {
                // A page break opens a page head of five further lines.
                QVERIFY(i + 5 < lines.size());
                QVERIFY(lines[i + 4].trimmed().startsWith("Elapsed") && lines[i + 5].trimmed().startsWith("Time"));
            }
            if (t.size() > 8 && t[2] == ':' && t[5] == ':') rows << seconds_of(t.left(8));
        }
        QVERIFY(marks.contains("MAROVANT 4500-K") && marks.contains("SINGLE RATE TEST"));
        QVERIFY(text.count('\f') >= 2);
        QVERIFY(rows.size() >= 120);
        for (qsizetype i = 0; i < rows.size(); ++i) QCOMPARE(rows[i], 30 * (i + 1));
        QVERIFY(rows.last() >= 3600);

        // The console's log reader graphs it whole.
        const LogReadResult read = read_log(bytes_of(text));
        QVERIFY(read.accepted());
        QCOMPARE(read.series.graph_last_index + 1, rows.size());
        QVERIFY(read.series.graph_time.back() >= 60);
        QVERIFY(qAbs(read.series.final_avg_flow - 100) < 5);
    }

    // What the console searches for in a summary and in a data log.
    void report_keys_data() {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<bool>("summary");
        QTest::newRow("single-rate summary") << QByteArray("DLA1") << true;
        QTest::newRow("single-rate data log") << QByteArray("DLA2") << false;
        QTest::newRow("occlusion summary") << QByteArray("DLC1") << true;
        QTest::newRow("occlusion data log") << QByteArray("DLC2") << false;
    }
    void report_keys() {
        QFETCH(QByteArray, command);
        QFETCH(bool, summary);
        if (command.startsWith("DLC")) {  // give channel C a short occlusion test
            port_.send("RTC4\r");
            QTest::qWait(1000);
            port_.send("STC\r");
            QTest::qWait(100);
        }
        port_.port.clear();
        const QByteArray stream = port_.stream(command);
        QVERIFY(stream.endsWith('\x07'));
        QCOMPARE(stream.count('\x07'), 1);
        const QByteArray text = without_bell(stream);

        // Each header label is followed by its underlined blank at the
        // offset the console writes the value from.
        const QList<QPair<QByteArray, int>> keys{{"Manufacturer:", 14}, {"Serial No.:", 12}, {"Department:", 12},
                                                 {"Set Rate(s):", 13},  {"Model:", 7},       {"Control No.:", 13},
                                                 {"Location: ", 10},    {"VTBI:", 6},        {"Comment:", 10}};
        for (const auto& [key, offset] : keys) {
            const qsizetype at = text.indexOf(key);
            QVERIFY2(at >= 0, key.constData());
            QCOMPARE(text.mid(at + offset - 1, 2), QByteArray(" _"));
        }
        QCOMPARE(text.indexOf('\r'), 30);  // the title line the comment line would go behind
        QCOMPARE(text.contains("SUMMARY"), summary);
        QCOMPARE(text.contains("LOG"), !summary);
        if (summary) {
            QVERIFY(text.endsWith("\r\n"));
            QVERIFY(!text.contains("END"));
            // The average rate stands between "Average Rate:" and its line end.
            const qsizetype a = text.indexOf("Average Rate:");
            const qsizetype b = text.indexOf("\r\n", a);
            QVERIFY(a >= 0 && b - 4 > a + 13);
            QVERIFY(text.mid(a + 13, b - 4 - (a + 13)).trimmed().toDouble() >= 0);
            // One "Tech", on the technician line behind the figures, and the
            // cut 10 characters before it ends on a whole line.
            const qsizetype tech = text.indexOf("Tech");
            QVERIFY(tech > b && text.indexOf("Tech", tech + 1) < 0);
            QCOMPARE(text.at(tech - 10), '\n');
        } else {
            QVERIFY(text.endsWith("END OF DATA"));
            QVERIFY(!text.contains("Tech"));
            QCOMPARE(text.count("END"), 1);
            QVERIFY(text.contains(command.startsWith("DLC") ? "OCCLUSION PRESSURE TEST" : "SINGLE RATE TEST"));
        }
    }

    // With --split a reply reaches the line in several pieces, apart in
    // time, and whole in the end.
    void split_replies() {
        Sim plain({"--seed", "7"});
        Sim split({"--seed", "7", "--split"});
        QVERIFY(plain.ready() && split.ready());
        Port a, b;
        QVERIFY(a.open(plain.link) && b.open(split.link));
        const QByteArray pattern = b.ask("DLA3");
        QCOMPARE(pattern, a.ask("DLA3"));
        QVERIFY2(b.arrivals.size() >= 2, "the test pattern came in one piece");
        QVERIFY(b.arrivals.last() - b.arrivals.first() >= 5);
        const QByteArray log = b.stream("DLB2");
        QVERIFY(b.arrivals.size() >= 10);
        QCOMPARE(undated(log), undated(a.stream("DLB2")));
    }

    // With --damage-line-ends the text streams carry the three damaged line
    // ends; the console's repair gives back the undamaged text.
    void damaged_line_ends() {
        Sim clean({"--seed", "3"});
        Sim damaged({"--seed", "3", "--damage-line-ends"});
        QVERIFY(clean.ready() && damaged.ready());
        Port a, b;
        QVERIFY(a.open(clean.link) && b.open(damaged.link));
        for (const QByteArray command : {"DLA1", "DLA2"}) {
            const QByteArray good = a.stream(command);
            const QByteArray bad = b.stream(command);
            QVERIFY(!good.contains("\r\n\n") && !good.contains("\r\r"));
            QVERIFY(bad.contains("\r\n\n") && bad.contains("\r\r ") && QRegularExpression("\r\n\r[^\n]").match(QString::fromLatin1(bad)).hasMatch());
            std::string repaired = bytes_of(bad);
            process_buffer(repaired);
            QCOMPARE(undated(QByteArray::fromStdString(repaired)), undated(good));
        }
        // Poll replies and error replies stay whole.
        QCOMPARE(b.ask("GRA"), QByteArray("e\r"));
    }

    // The console's capture takes a download read by read, as its timer
    // does, over a poor line too: the log stays graphable, the summary
    // takes the header and the flow error.
    void captured_by_console_data() {
        QTest::addColumn<QStringList>("faults");
        QTest::addColumn<char>("mode");
        QTest::newRow("summary") << QStringList{} << '1';
        QTest::newRow("data log") << QStringList{} << '2';
        QTest::newRow("summary, split and damaged") << QStringList{"--split", "--damage-line-ends"} << '1';
        QTest::newRow("data log, split and damaged") << QStringList{"--split", "--damage-line-ends"} << '2';
    }
    void captured_by_console() {
        QFETCH(QStringList, faults);
        QFETCH(char, mode);
        Sim sim(faults);
        QVERIFY(sim.ready());
        Port port;
        QVERIFY(port.open(sim.link));
        const QByteArray delivered = port.stream(QByteArray("DLB") + mode);
        QVERIFY(delivered.endsWith('\x07'));

        ReportRec rec;
        rec.manufacturer = "Acme";
        rec.model = "P-7";
        rec.location = "Ward 4";
        rec.set_rates = "100";
        rec.technician = "J. Doe";
        Capture capture({true, mode, rec});
        CaptureTick last;
        for (const QByteArray& piece : port.pieces) {
            last = capture.tick(bytes_of(piece));
            QVERIFY(last.errors.empty());
        }
        QVERIFY(last.ended);
        const std::string file = last.tempfile_text;
        QVERIFY(file.find('\x07') == std::string::npos);
        QVERIFY(file.find("Manufacturer: Acme") != std::string::npos);
        QVERIFY(file.find("Model: P-7") != std::string::npos);
        QVERIFY(file.find("Location: Ward 4") != std::string::npos);
        QVERIFY(file.find("Technician: J. Doe") != std::string::npos);
        QCOMPARE(QByteArray::fromStdString(file).count("Tech"), 1);  // the analyser's own line is cut off
        if (mode == '1') {
            QVERIFY(file.find("Flow Error:") != std::string::npos);
        } else {
            // Every row the analyser logged is graphed.
            const LogReadResult read = read_log(file);
            QVERIFY(read.accepted());
            QCOMPARE(read.series.graph_last_index + 1, 60);  // half an hour, a row each 30 s
            QCOMPARE(read.series.graph_time.back(), 30.0);
        }
    }

    void silence() {
        Sim sim({"--silent-after", "2"});
        QVERIFY(sim.ready());
        Port port;
        QVERIFY(port.open(sim.link));
        QCOMPARE(port.ask("GRA"), QByteArray("e\r"));
        QCOMPARE(port.ask("XX"), QByteArray("?\r"));
        QCOMPARE(port.ask("GRA", 800), QByteArray());
        QCOMPARE(port.ask("DLA3", 1200), QByteArray());
    }

    void hang_up() {
        Sim sim({"--hangup-after", "1"});
        QVERIFY(sim.ready());
        Port port;
        QVERIFY(port.open(sim.link));
        QSignalSpy errors(&port.port, &QSerialPort::errorOccurred);
        QCOMPARE(port.ask("GRA"), QByteArray("e\r"));
        // The port sees the line gone: its reads fail. (A wait that times
        // out tells an error too; that one is no sign of the hang-up.)
        port.read_for(500);
        bool failed = false;
        for (const auto& e : errors) {
            const auto error = e.first().value<QSerialPort::SerialPortError>();
            failed = failed || error == QSerialPort::ReadError || error == QSerialPort::ResourceError;
        }
        QVERIFY(failed);
        QVERIFY(sim.process.state() == QProcess::Running);
    }

    // A stop signal ends the simulator and takes its link away.
    void stop_signals_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << int(SIGTERM);
        QTest::newRow("SIGINT") << int(SIGINT);
    }
    void stop_signals() {
        QFETCH(int, signal);
        Sim sim({});
        QVERIFY(sim.ready());
        ::kill(static_cast<pid_t>(sim.process.processId()), signal);
        QVERIFY(sim.process.waitForFinished(3000));
        QCOMPARE(sim.process.exitCode(), 0);
        QVERIFY(!QFileInfo(sim.link).isSymLink());
    }

    void bad_options_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::newRow("no link") << QStringList{"--speed", "2"} << 2;
        QTest::newRow("speed 0") << QStringList{"--link", "@", "--speed", "0"} << 2;
        QTest::newRow("rate 0") << QStringList{"--link", "@", "--rate", "A=0"} << 2;
        QTest::newRow("channel X") << QStringList{"--link", "@", "--channels", "AX"} << 2;
        QTest::newRow("negative count") << QStringList{"--link", "@", "--silent-after", "-1"} << 2;
        QTest::newRow("unknown option") << QStringList{"--link", "@", "--fast"} << 2;
        QTest::newRow("link over a plain file") << QStringList{"--link", "#"} << 1;
    }
    void bad_options() {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QTemporaryDir dir;
        QFile plain(dir.filePath("plain"));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        plain.close();
        args.replaceInStrings("@", dir.filePath("port"));
        args.replaceInStrings("#", plain.fileName());
        QProcess p;
        p.start(sim_binary(), args);
        QVERIFY(p.waitForFinished(5000));
        QCOMPARE(p.exitCode(), status);
        QVERIFY(!p.readAllStandardError().isEmpty());
        QVERIFY(!QFileInfo::exists(dir.filePath("port")));
    }
};

QTEST_GUILESS_MAIN(tst_analyser_sim)
#include "tst_analyser_sim.moc"
