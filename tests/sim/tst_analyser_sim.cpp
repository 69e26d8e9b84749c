// The simulated analyser, run as a program and spoken to through its
// pseudo-terminal with the serial port class the console itself uses. What
// the download and live runs against it rely on is proven there; here the
// rest: odd commands, attaching, the pump model, the line faults, the options.

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <functional>

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
    // At the port's defaults: 9600 baud, 8 data bits, no parity, 1 stop bit.
    bool open(const QString& name) {
        port.setPortName(name);
        return port.open(QIODevice::ReadWrite);
    }

    void send(const QByteArray& command) {
        port.write(command);
        port.waitForBytesWritten(1000);
    }

    // Reads until `done` holds for what came, or the time is up, keeping the
    // time each piece came at.
    QByteArray read_until(const std::function<bool(const QByteArray&)>& done, int ms = 3000) {
        QByteArray got;
        QElapsedTimer t;
        t.start();
        while (!done(got) && t.elapsed() < ms) {
            if (port.bytesAvailable() == 0) port.waitForReadyRead(20);
            const QByteArray piece = port.readAll();
            if (!piece.isEmpty()) arrivals << t.elapsed();
            got += piece;
        }
        return got;
    }
    QByteArray read_for(int ms) {
        return read_until([](const QByteArray&) { return false; }, ms);
    }

    // A command and its reply: up to its line end, or up to the character 7
    // that closes a text stream.
    QByteArray ask(const QByteArray& command, int ms = 3000, bool stream = false) {
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
    QList<qint64> arrivals;  // when the pieces of the last reply came, in ms after the command
};

// The lines of a report, with the line whose text is the date taken out so
// that two runs started in different minutes compare alike.
QByteArray undated(const QByteArray& report) {
    QByteArray out;
    for (const QByteArray& line : report.split('\n'))
        if (!line.contains("Test Date:")) out += line + '\n';
    return out;
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
        QTest::newRow("poll ended by LF alone") << QByteArray("GRB\n") << QByteArray("e\r");
        QTest::newRow("unknown command") << QByteArray("XYZ\r") << QByteArray("?\r");
        QTest::newRow("no such channel") << QByteArray("GRE\r") << QByteArray("?\r");
        QTest::newRow("no such test") << QByteArray("RTA9\r") << QByteArray("?\r");
        QTest::newRow("no such download") << QByteArray("DLA4\r") << QByteArray("?\r");
        QTest::newRow("test pattern on a channel without pump") << QByteArray("DLD3\r") << pattern;
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

    // A test attached with "GR" (the live runs start theirs with "RT")
    // answers each poll with its newest data in the console's field order,
    // until "ST". Attaching again leaves it running: its time goes on.
    void live_test_data() {
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<bool>("occlusion");
        QTest::newRow("single rate") << QByteArray("GRB1") << false;
        QTest::newRow("occlusion") << QByteArray("GRC4") << true;
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
        double first_value = -1, last_value = -1;  // volume of a single-rate test, pressure of an occlusion test
        for (int poll = 0; poll < 4; ++poll) {
            QTest::qWait(400);
            if (poll == 2) port_.send(start + "\r");
            const QByteArray reply = port_.ask("GR" + channel);
            QVERIFY2(shape.match(QString::fromLatin1(reply)).hasMatch(), reply.constData());
            const auto rt = process_rt_data(bytes_of(reply));
            const auto ot = process_ot_data(bytes_of(reply));
            const int seconds = occlusion ? ot.data.minutes * 60 + ot.data.seconds
                                          : rt.data.hours * 3600 + rt.data.minutes * 60 + rt.data.seconds;
            const double value = occlusion ? ot.data.psi : rt.data.volume;
            // PSI to 0.01, mmHg whole; the average flow is the volume over the elapsed time.
            QVERIFY(occlusion ? ot.ok() && qAbs(ot.data.mmhg - ot.data.psi * 51.7149) <= 0.8
                              : rt.ok() && rt.data.minutes < 60 && rt.data.seconds < 60);
            if (!occlusion && seconds >= 10)
                QVERIFY(qAbs(rt.data.avg_flow - rt.data.volume * 3600 / seconds) < 0.05 * rt.data.avg_flow + 0.1);
            QVERIFY2(seconds > last_seconds && value >= last_value - 0.1, reply.constData());
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

    // The console may close its port and open it again: the line stays up.
    void reopen() {
        port_.port.close();
        QVERIFY(port_.open(shared_->link));
        QCOMPARE(port_.ask("GRD"), QByteArray("n\r"));
    }

    // The pump model over a long test: each channel's rate and its range
    // letter follow --rate, and an occlusion test levels off at the pump's
    // stall pressure.
    void pump_model_data() {
        QTest::addColumn<QString>("rates");
        QTest::addColumn<QStringList>("pumps");  // range letter and rate of channels A to D
        QTest::newRow("per channel, the others at 100") << "A=10,B=250" << QStringList{"A10", "B250", "B100", "B100"};
        QTest::newRow("one for all, pulsatile") << "2" << QStringList{"C2", "C2", "C2", "C2"};
    }
    void pump_model() {
        QFETCH(QString, rates);
        QFETCH(QStringList, pumps);
        Sim sim({"--rate", rates, "--speed", "6000"});
        QVERIFY(sim.ready());
        Port port;
        QVERIFY(port.open(sim.link));
        const QByteArray channels = "ABCD";
        for (char c : channels) port.send(QByteArray("RT") + c + "1\r");
        QTest::qWait(800);  // more than an hour of test time
        for (int i = 0; i < 4; ++i) {
            const auto p = process_rt_data(bytes_of(port.ask(QByteArray("GR") + channels[i])));
            const double rate = pumps[i].mid(1).toDouble();
            QVERIFY(p.ok() && p.data.hours >= 1);
            QCOMPARE(QByteArray(1, p.data.range), pumps[i].left(1).toLatin1());
            // A pump delivers its set rate within a few per cent.
            QVERIFY2(qAbs(p.data.avg_flow - rate) < 0.05 * rate, qPrintable(QString::number(p.data.avg_flow)));
            QVERIFY(qAbs(p.data.flow - rate) < 0.6 * rate);
        }
        const auto psi = [&](char c) { return process_ot_data(bytes_of(port.ask(QByteArray("GR") + c))).data.psi; };
        for (char c : channels) port.send(QByteArray("RT") + c + "4\r");
        QTest::qWait(800);
        QList<double> late;
        for (char c : channels) late << psi(c);
        QTest::qWait(500);
        for (int i = 0; i < 4; ++i) {
            QVERIFY2(late[i] >= 10 && late[i] <= 19, qPrintable(QString::number(late[i])));
            QVERIFY(qAbs(psi(channels[i]) - late[i]) < 0.5);
        }
    }

    // The faults of a poor line are really on the replies (the live and
    // download runs would pass unseen without them): with --split a stream
    // comes in pieces apart in time, with --damage-line-ends it carries the
    // three damaged line ends. The console's repair gives back what the clean
    // line gives, and poll replies stay whole.
    void line_faults_data() {
        QTest::addColumn<QString>("fault");
        QTest::newRow("split") << "--split";
        QTest::newRow("damaged line ends") << "--damage-line-ends";
    }
    void line_faults() {
        QFETCH(QString, fault);
        Sim clean({"--seed", "3"});
        Sim faulty({"--seed", "3", fault});
        QVERIFY(clean.ready() && faulty.ready());
        Port a, b;
        QVERIFY(a.open(clean.link) && b.open(faulty.link));
        const QByteArray good = a.stream("DLA2"), bad = b.stream("DLA2");
        if (fault == "--split")
            QVERIFY(b.arrivals.size() >= 10 && b.arrivals.last() - b.arrivals.first() >= 5);
        else
            QVERIFY(bad.contains("\r\n\n") && bad.contains("\r\r ") &&
                    QRegularExpression("\r\n\r[^\n]").match(QString::fromLatin1(bad)).hasMatch());
        std::string repaired = bytes_of(bad);
        process_buffer(repaired);
        QCOMPARE(undated(QByteArray::fromStdString(repaired)), undated(good));
        QCOMPARE(b.ask("GRA"), QByteArray("e\r"));
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
