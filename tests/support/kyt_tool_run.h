#pragma once
// Runs the built kyt-tool; what it prints split into "key: value" pairs and other lines.
#include <QtCore>

struct ToolRun {
    int exit_code = -1;
    QStringList lines;
    QMap<QString, QString> values;
    QString error;  // stderr, trimmed
};

inline ToolRun run_kyt_tool(const QStringList& args) {
    QProcess p;
    p.start(qEnvironmentVariable("KYT_BINARY_DIR") + "/tools/kyt-tool/kyt-tool", args);
    ToolRun r;
    if (!p.waitForFinished(30000)) return r;
    r.exit_code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.error = QString::fromLocal8Bit(p.readAllStandardError()).trimmed();
    for (const QString& line : QString::fromLocal8Bit(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts)) {
        const int colon = line.indexOf(": ");
        if (colon > 0) r.values.insert(line.left(colon), line.mid(colon + 2));
        else r.lines << line;
    }
    return r;
}

inline QString graph_data(const QString& name) {
    return qEnvironmentVariable("KYT_SOURCE_DIR") + "/tests/data/graph/" + name;
}
