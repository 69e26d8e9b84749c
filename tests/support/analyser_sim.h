#pragma once
// A simulated analyser behind a link in a temporary folder, at the other end of a real serial line.

#include <QtCore>

namespace kyt::test {

inline QString sim_binary() { return qEnvironmentVariable("KYT_BINARY_DIR") + "/tools/analyser-sim/kyt-analyser-sim"; }

class Sim {
public:
    explicit Sim(const QStringList& args) {
        link = dir.path() + "/port";
        process.start(sim_binary(), QStringList{"--link", link} + args);
        if (!process.waitForStarted(5000)) return;
        for (QDeadlineTimer d(5000); !process.canReadLine() && !d.hasExpired();) process.waitForReadyRead(100);
        device = QString::fromLocal8Bit(process.readLine()).trimmed();
    }
    ~Sim() { stop(); }
    // Ends the simulator, as an analyser unplugged from the line.
    void stop() {
        if (process.state() == QProcess::NotRunning) return;
        process.terminate();
        process.waitForFinished(3000);
    }
    bool ready() const { return !device.isEmpty() && QFileInfo(link).symLinkTarget() == device; }

    QTemporaryDir dir;
    QProcess process;
    QString link;
    QString device;
};

}  // namespace kyt::test
