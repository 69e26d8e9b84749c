#include <QtTest>

#include "reports/capture.h"
#include "support/test_data.h"

using namespace kyt;

namespace {

const ReportRec golden_rec{"Acme Pumps", "Volumat X", "SN-1", "C42", "ICU", "Ward 3",
                           "100", "250", "checked", "J. Doe", "LVP", "5"};

// The closing lines every capture ends with, for golden_rec.
const std::string closing = "\r\n        PumpType: LVP____________________ Pump Tolerance(+/- %): 5_____\r\n"
                            "\r\n        Technician: J. Doe_______________ Signature:___________________";

struct Run {
    CaptureTick last;  // the tick that ended or stopped the capture, or the last one
    std::vector<ReplyError> errors;
};

// Feeds the blocks one a tick, then empty ticks, as the serial port would.
Run feed(Capture& c, const std::vector<std::string>& blocks) {
    Run r;
    auto one = [&](std::string_view block) {
        r.last = c.tick(block);
        r.errors.insert(r.errors.end(), r.last.errors.begin(), r.last.errors.end());
        return r.last.ended || r.last.stopped;
    };
    for (const std::string& b : blocks)
        if (one(b)) return r;
    for (int i = 0; i < 3; ++i)
        if (one({})) return r;
    return r;
}

Run capture(const std::vector<std::string>& blocks, bool save_file = false, char mode = '2') {
    Capture c({save_file, mode, golden_rec});
    return feed(c, blocks);
}

}  // namespace

class tst_capture : public QObject {
    Q_OBJECT
private slots:
    void cleaning_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("characters up to 6 become blanks, 7 and high ones stay, the last stays")
            << QByteArray("a\x01\x00" "b\x07\xc4\x05\x06", 8) << QByteArray("a  b\x07\xc4 \x06", 8);
        QTest::newRow("repair stops at the end") << QByteArray("a\r\n\n") << QByteArray("a\r\n\r");
        // Each repair writes all four bytes, so the next one starts on a whole CR LF.
        QTest::newRow("repairs run on into each other") << QByteArray("\r\n\n\n\nX") << QByteArray("\r\n\r\n\r\n");
        QTest::newRow("CR CR LF is left") << QByteArray("a\r\r\nb") << QByteArray("a\r\r\nb");
    }
    void cleaning() {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, expected);
        std::string s = text.toStdString();
        process_buffer(s);
        QCOMPARE(QByteArray::fromStdString(s), expected);
    }

    // One transfer gives the same file wherever the serial port splits it, and
    // each damaged line end (written over every blank line) is repaired.
    void every_split_data() {
        QTest::addColumn<bool>("summary");  // a summary with the header, or a data log as received
        QTest::addColumn<QByteArray>("damage");
        QTest::newRow("data log, CR LF LF") << false << QByteArray("\r\n\nx");
        QTest::newRow("summary with header, CR CR blank") << true << QByteArray("\r\r x");
        QTest::newRow("summary with header, CR LF CR") << true << QByteArray("\r\n\rx");
    }
    void every_split() {
        QFETCH(bool, summary);
        QFETCH(QByteArray, damage);
        std::string text = test_data(summary ? "logs/analyser_summary.txt" : "logs/analyser_log.txt");
        const std::string golden = test_data(summary ? "reports/summary_tempfile.dat" : "reports/log_tempfile.dat");
        QVERIFY(!text.empty() && !golden.empty());
        for (std::size_t p = text.find("\r\n\r\n"); p != std::string::npos; p = text.find("\r\n\r\n", p + 4))
            text.replace(p, 4, damage.toStdString());
        for (std::size_t k = 0; k <= text.size(); ++k) {
            const Run r = capture({text.substr(0, k), text.substr(k)}, summary, summary ? '1' : '2');
            QVERIFY2(r.last.ended && r.last.tempfile_text == golden, qPrintable(QString("split at %1").arg(k)));
        }
    }

    void error_replies_data() {
        QTest::addColumn<QStringList>("blocks");
        QTest::addColumn<QList<int>>("expected");
        QTest::addColumn<bool>("stopped");
        const int transmission = int(ReplyError::transmission), not_running = int(ReplyError::not_running),
                  not_connected = int(ReplyError::not_connected);
        QTest::newRow("n CR alone") << QStringList{"n\r"} << QList<int>{not_connected} << true;
        QTest::newRow("e CR alone") << QStringList{"e\r"} << QList<int>{not_running} << false;
        QTest::newRow("? and CR in two blocks") << QStringList{"?", "\r"} << QList<int>{transmission} << false;
        // Inside a transfer the last two characters are held back: they may be
        // a one-letter line whose LF is still on its way.
        QTest::newRow("one-letter line n, its LF a read later")
            << QStringList{"SUMMARY\r\nline\r\nn\r", "", "\nmore\r\n"} << QList<int>{} << false;
        QTest::newRow("followed by two characters") << QStringList{"line\r\nn\rab"} << QList<int>{not_connected}
                                                    << true;
        QTest::newRow("a two-character line tells by its first")
            << QStringList{"x\r\nno\r\nmore\r\n"} << QList<int>{not_connected} << true;
        QTest::newRow("other short lines tell nothing") << QStringList{"ab\r\n  \r\n?ab\r\nx\r"} << QList<int>{}
                                                        << false;
    }
    void error_replies() {
        QFETCH(QStringList, blocks);
        QFETCH(QList<int>, expected);
        QFETCH(bool, stopped);
        std::vector<std::string> b;
        for (const QString& s : blocks) b.push_back(s.toStdString());
        Capture c({false, '1', golden_rec});
        const Run r = feed(c, b);
        QList<int> found;
        for (ReplyError e : r.errors) found << int(e);
        QCOMPARE(found, expected);
        QCOMPARE(r.last.stopped, stopped);
        // An abandoned capture takes nothing more; any other goes on.
        QCOMPARE(c.tick("SUMMARY\r\n\a").ended, !stopped);
    }

    void last_line_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("kept");
        QTest::newRow("data log cut after DATA") << "LOG\r\n         END OF DATA\a" << "LOG\r\n         END OF DATA\r\n";
        QTest::newRow("data log cut after the first A") << "LOG\r\n  FINAL\a" << "LOG\r\n  FINA\r\n";
        QTest::newRow("data log with neither keeps the line") << "LOG\r\n  end\a" << "LOG\r\n  end\a";
        QTest::newRow("summary's last line becomes CR LF") << "SUMMARY\r\n  last words\a" << "SUMMARY\r\n\r\n";
        QTest::newRow("a line with character 5 is left out") << "LOG\r\n  noise\a\x05" << "LOG\r\n";
    }
    void last_line() {
        QFETCH(QString, text);
        QFETCH(QString, kept);
        const Run r = capture({text.toStdString()});
        QVERIFY(r.last.ended);
        QCOMPARE(r.last.shown, std::optional<std::string>(end_of_download_text));
        QCOMPARE(QString::fromStdString(r.last.tempfile_text), kept + QString::fromStdString(closing) + "\r\n");
    }
};

QTEST_APPLESS_MAIN(tst_capture)
#include "tst_capture.moc"
