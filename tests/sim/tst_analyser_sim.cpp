// The simulated analyser through its pseudo-terminal: what the console's runs rely on.

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSerialPort>
#include <QtTest>

#include <functional>

#include "link/protocol.h"
#include "support/analyser_sim.h"

using namespace kyt;
using kyt::test::Sim;
using kyt::test::sim_binary;

namespace {

// The console's side of the line, at the port's defaults (9600 8N1).
struct Port {
    bool open(const QString& name) {
        port.setPortName(name);
        return port.open(QIODevice::ReadWrite);
    }
    void send(const QByteArray& command) {
        port.write(command);
        port.waitForBytesWritten(1000);
    }
    // Reads until `done` holds for what came or the time is up, noting when each piece came.
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
    // A command and its reply: up to its line end, or for a stream up to the character 7.
    QByteArray ask(const QByteArray& command, bool stream = false) {
        arrivals.clear();
        send(command + "\r");
        return read_until([stream](const QByteArray& b) { return b.contains('\x07') || (!stream && b.endsWith('\r')); },
                          stream ? 15000 : 3000);
    }
    QSerialPort port;
    QList<qint64> arrivals;
};

}  // namespace

class tst_analyser_sim : public QObject {
    Q_OBJECT
    std::unique_ptr<Sim> shared_;  // channels A to C carry a pump, D none
    Port port_;

private slots:
    void initTestCase() {
        QVERIFY2(QFileInfo::exists(sim_binary()), qPrintable(sim_binary()));
        shared_ = std::make_unique<Sim>(QStringList{"--channels", "ABC", "--speed", "60"});
        QVERIFY(shared_->ready());
        QVERIFY2(port_.open(shared_->link), qPrintable(port_.port.errorString()));
    }

    // The error answers the console tells apart, and the commands taken in silence.
    void replies_data() {
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("poll with no test, ended by LF alone") << QByteArray("GRB\n") << QByteArray("e\r");
        QTest::newRow("unknown command") << QByteArray("XYZ\r") << QByteArray("?\r");
        QTest::newRow("test pattern on a channel without pump")
            << QByteArray("DLD3\r")
            << QByteArray(test_pattern_first_line.data()) + "\r\n" + QByteArray(test_pattern_second_line.data()) + "\r\n";
        QTest::newRow("print is taken in silence") << QByteArray("PRA1\r") << QByteArray();
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

    // The console may close its port and open it again: the line stays up.
    void reopen() {
        port_.port.close();
        QVERIFY(port_.open(shared_->link));
        QCOMPARE(port_.ask("GRD"), QByteArray("n\r"));
    }

    // The line faults are really there, or the console's runs on them would prove nothing.
    void line_faults_data() {
        QTest::addColumn<QString>("fault");
        QTest::newRow("split") << "--split";
        QTest::newRow("damaged line ends") << "--damage-line-ends";
    }
    void line_faults() {
        QFETCH(QString, fault);
        Sim faulty({"--seed", "3", fault});
        QVERIFY(faulty.ready());
        Port b;
        QVERIFY(b.open(faulty.link));
        const QByteArray bad = b.ask("DLA2", true);
        QVERIFY(bad.endsWith('\x07'));
        if (fault == "--split")
            QVERIFY(b.arrivals.size() >= 10 && b.arrivals.last() - b.arrivals.first() >= 5);
        else
            QVERIFY(bad.contains("\r\n\n") && bad.contains("\r\r ") &&
                    QRegularExpression("\r\n\r[^\n]").match(QString::fromLatin1(bad)).hasMatch());
        QCOMPARE(b.ask("GRA"), QByteArray("e\r"));
    }
};

QTEST_GUILESS_MAIN(tst_analyser_sim)
#include "tst_analyser_sim.moc"
