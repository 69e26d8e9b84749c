// The simulated analyser through its pseudo-terminal, as the console's serial port class reads it.

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSerialPort>
#include <QtTest>

#include "support/analyser_sim.h"

using kyt::test::Sim;
using kyt::test::sim_binary;

namespace {

// The console's side of the line, at the port's defaults (9600 8N1).
struct Port {
    QSerialPort port;
    QList<qint64> arrivals;  // when each piece of the last reply came, in ms
    bool open(const QString& name) {
        port.setPortName(name);
        return port.open(QIODevice::ReadWrite);
    }
    // A command and its reply: up to its line end, or for a stream up to the character 7.
    QByteArray ask(const QByteArray& command, bool stream = false) {
        arrivals.clear();
        port.write(command + "\r");
        port.waitForBytesWritten(1000);
        QByteArray got;
        QElapsedTimer t;
        t.start();
        while (!(got.contains('\x07') || (!stream && got.endsWith('\r'))) && t.elapsed() < (stream ? 15000 : 3000)) {
            if (port.bytesAvailable() == 0) port.waitForReadyRead(20);
            const QByteArray piece = port.readAll();
            if (!piece.isEmpty()) arrivals << t.elapsed();
            got += piece;
        }
        return got;
    }
};

}  // namespace

class tst_analyser_sim : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QVERIFY2(QFileInfo::exists(sim_binary()), qPrintable(sim_binary())); }

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
        QVERIFY2(b.open(faulty.link), qPrintable(b.port.errorString()));
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
