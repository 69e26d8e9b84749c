#include <QtTest>

#include <random>

#include "common/text.h"
#include "reports/capture.h"
#include "common/file_text.h"
#include "support/test_data.h"

using namespace kyt;

namespace {

const ReportRec golden_rec{"Acme Pumps", "Volumat X", "SN-1", "C42", "ICU", "Ward 3",
                           "100", "250", "checked", "J. Doe", "LVP", "5"};

// The closing lines every capture ends with, for golden_rec.
const std::string closing = "\r\n        PumpType: LVP____________________ Pump Tolerance(+/- %): 5_____\r\n"
                            "\r\n        Technician: J. Doe_______________ Signature:___________________";

struct Run {
    CaptureTick last;              // the tick that ended or stopped the capture, or the last one
    std::vector<ReplyError> errors;
    std::size_t longest_text = 0;  // the longest edit text after any tick
};

// Feeds the blocks one a tick, then empty ticks, as the serial port would.
Run feed(Capture& c, const std::vector<std::string>& blocks) {
    Run r;
    auto one = [&](std::string_view block) {
        r.last = c.tick(block);
        r.errors.insert(r.errors.end(), r.last.errors.begin(), r.last.errors.end());
        r.longest_text = std::max(r.longest_text, c.report_text().size());
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

std::vector<std::string> blocks_of(const std::string& text, std::size_t size) {
    std::vector<std::string> blocks;
    for (std::size_t i = 0; i < text.size(); i += size) blocks.push_back(text.substr(i, size));
    return blocks;
}

// Every blank line's CR LF CR LF written as a damaged sequence of the same
// length: the damage and one character of junk.
std::string damaged(std::string text, const std::string& damage) {
    for (std::size_t p = text.find("\r\n\r\n"); p != std::string::npos; p = text.find("\r\n\r\n", p + 4))
        text.replace(p, 4, damage + "x");
    return text;
}

// A data log of about `size` bytes in the console's own layout, with a page
// break every 51 rows, and what the capture must make of it.
std::pair<std::string, std::string> make_long_log(std::size_t size) {
    std::string text = "\r\n\r\n" + spaces(33) + "MAROVANT 4500-K\r\n\r\n" + spaces(9) + "SINGLE RATE TEST\r\n\r\n" +
                       spaces(9) + "Elapsed   Flow  Avg Flow  Volume  B.Pres\r\n" + spaces(9) +
                       "  Time    (ml/h)  (ml/h)    (ml)  (mmHg)\r\n";
    for (int row = 0; text.size() < size; ++row) {
        if (row > 0 && row % 51 == 0)
            text += "\f\r\n\r\n" + spaces(67) + "p. " + std::to_string(row / 51 + 1) + "\r\n\r\n";
        char line[80];
        std::snprintf(line, sizeof line, "         %02d:%02d:%02d  %5.2f   %5.2f    %5.3f     %d\r\n", row / 3600,
                      row / 60 % 60, row % 60, 95 + row % 10 * 0.5, 99.5 + row % 7 * 0.1, row * 0.0278, row % 20);
        text += line;
    }
    text += "\r\n         END OF DATA";
    return {text + "\a", text + "\r\n" + closing + "\r\n"};
}

}  // namespace

class tst_capture : public QObject {
    Q_OBJECT
private slots:
    // The three damaged line ends, repaired in whole transfers, are in
    // every_split; these are the edges.
    void cleaning_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("control characters become blanks, the last stays")
            << QByteArray("a\x01\x00" "b\x05\x06", 6) << QByteArray("a  b \x06", 6);
        QTest::newRow("character 7 and high characters stay") << QByteArray("a\x07\xc4\x1b") << QByteArray("a\x07\xc4\x1b");
        QTest::newRow("repair stops at the end") << QByteArray("a\r\n\n") << QByteArray("a\r\n\r");
        QTest::newRow("blank lines stay") << QByteArray("a\r\n\r\n\r\nb") << QByteArray("a\r\n\r\n\r\nb");
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

    void every_split_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("save_file");
        QTest::addColumn<QByteArray>("damage");
        const QByteArray damages[] = {"\r\n\r", "\r\n\n", "\r\r ", "\r\n\r"};
        const char* names[] = {"clean", "CR LF LF", "CR CR blank", "CR LF CR"};
        for (int i = 0; i < 4; ++i) {
            const QByteArray damage = i == 0 ? QByteArray() : damages[i];
            QTest::addRow("data log, %s", names[i]) << "logs/analyser_log.txt" << "reports/log_tempfile.dat" << false
                                                    << damage;
            QTest::addRow("summary with header, %s", names[i])
                << "logs/analyser_summary.txt" << "reports/summary_tempfile.dat" << true << damage;
        }
    }
    // One transfer gives the same file however the serial port splits it,
    // and damaged line ends are repaired to what the clean text holds.
    void every_split() {
        QFETCH(QString, file);
        QFETCH(QString, expected);
        QFETCH(bool, save_file);
        QFETCH(QByteArray, damage);
        std::string text = test_data(file.toStdString());
        const std::string golden = test_data(expected.toStdString());
        QVERIFY(!text.empty() && !golden.empty());
        if (!damage.isEmpty()) {
            text = damaged(text, damage.toStdString());
            QVERIFY(!contains(text, "\r\n\r\n"));
        }
        const char mode = save_file ? '1' : '2';
        for (std::size_t k = 0; k <= text.size(); ++k) {
            const Run r = capture({text.substr(0, k), text.substr(k)}, save_file, mode);
            QVERIFY2(r.last.ended, qPrintable(QString("split at %1").arg(k)));
            QVERIFY2(r.last.tempfile_text == golden, qPrintable(QString("split at %1").arg(k)));
        }
        std::mt19937 random(7);
        for (int run = 0; run < 300; ++run) {
            std::vector<std::string> blocks;
            for (std::size_t p = 0; p < text.size();) {
                const std::size_t n = std::uniform_int_distribution<std::size_t>(0, 12)(random);
                blocks.push_back(text.substr(p, n));
                p += n;
            }
            QVERIFY2(capture(blocks, save_file, mode).last.tempfile_text == golden,
                     qPrintable(QString("random run %1").arg(run)));
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
        // Inside a transfer two characters at the end of what came are held
        // back: they may be a one-letter line whose LF is still on its way.
        QTest::newRow("held behind lines in one block") << QStringList{"SUMMARY\r\nline\r\n?\r"} << QList<int>{}
                                                        << false;
        QTest::newRow("held behind lines, next block") << QStringList{"line\r\n", "e\r"} << QList<int>{} << false;
        QTest::newRow("one-letter line n, its LF a read later")
            << QStringList{"SUMMARY\r\nline\r\nn\r", "", "\nmore\r\n"} << QList<int>{} << false;
        QTest::newRow("followed by two characters") << QStringList{"line\r\nn\rab"} << QList<int>{not_connected}
                                                    << true;
        QTest::newRow("a two-character line tells by its first")
            << QStringList{"x\r\nno\r\nmore\r\n"} << QList<int>{not_connected} << true;
        QTest::newRow("other two-character lines tell nothing") << QStringList{"ab\r\n  \r\nx\r"} << QList<int>{}
                                                                << false;
        QTest::newRow("longer lines tell nothing") << QStringList{"?ab\r\ne\r\n"} << QList<int>{} << false;
        QTest::newRow("inside a line tells nothing") << QStringList{"abc n\rdef\r\n"} << QList<int>{} << false;
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
        const CaptureTick after = c.tick("SUMMARY\r\n\a");
        QCOMPARE(after.ended, !stopped);
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

    // The header goes in before the text is cleaned the last time: a comment
    // line put behind a title that is one character short leaves CR LF LF,
    // which is repaired like any other damaged line end.
    void header_lines_are_cleaned_too() {
        ReportRec rec;
        rec.comment = "note";
        Capture c({true, '1', rec});
        const Run r = feed(c, {"ANALYSER SUMMARY, SHORT TITLE\r\nAverage Rate: 11.00 ml/h\r\n\a"});
        QVERIFY(r.last.ended);
        const std::string expected =
            "ANALYSER SUMMARY, SHORT TITLE\r\n\r\n       Comment: note" + std::string(50, '_') +
            "\rAverage Rate: 11.00 ml/h\r\n\r\n\r\n        PumpType: " + std::string(23, '_') +
            " Pump Tolerance(+/- %): ______\r\n\r\n        Technician: " + std::string(21, '_') +
            " Signature:___________________\r\n";
        QCOMPARE(QString::fromStdString(r.last.tempfile_text), QString::fromStdString(expected));
    }

    // The screen shows the last whole line of each tick.
    void lines_shown() {
        Capture c({false, '2', golden_rec});
        QCOMPARE(c.tick("first\r\nsecond\r\nthi").shown, std::optional<std::string>("second"));
        QCOMPARE(c.tick("rd\r\n  ").shown, std::optional<std::string>("third"));
        const CaptureTick quiet = c.tick({});
        QVERIFY(quiet.has_data && !quiet.shown);
    }

    // A long log keeps the edit text short and comes back whole, in order
    // (a far longer one comes from the simulator in tst_download_e2e).
    void long_log() {
        const auto [text, expected] = make_long_log(70 * 1024);
        Capture c({false, '2', golden_rec});
        const Run r = feed(c, blocks_of(text, 37));
        QVERIFY(r.last.ended);
        QVERIFY(c.page_count() > 0);
        QVERIFY2(r.longest_text < capture_text_limit + 100, qPrintable(QString::number(r.longest_text)));
        QCOMPARE(r.last.tempfile_text.size(), expected.size());
        QVERIFY(r.last.tempfile_text == expected);
    }

    // A long text without "Elapsed" freezes its head for its length; the
    // pages still come back between head and rest, also when the header
    // puts a comment line into the head.
    void long_text_without_elapsed_data() {
        QTest::addColumn<bool>("save_file");
        QTest::newRow("as received") << false;
        QTest::newRow("with a comment line inserted") << true;
    }
    void long_text_without_elapsed() {
        QFETCH(bool, save_file);
        std::string text = "      ANALYSER TEXT, ALL TESTS\r\n";
        for (int i = 0; text.size() < 90000; ++i) text += "  record " + std::to_string(i) + " of the day\r\n";
        ReportRec rec;
        rec.comment = "note";
        Capture c({save_file, '4', rec});
        const Run r = feed(c, blocks_of(text + "\a", 500));
        QVERIFY(r.last.ended);
        QVERIFY(c.page_count() > 10);
        std::string expected = text + "\a" +
                               "\r\n        PumpType: _______________________ Pump Tolerance(+/- %): ______\r\n"
                               "\r\n        Technician: _____________________ Signature:___________________\r\n";
        if (save_file)
            expected.insert(31, "\n        Comment: note__________________________________________________\r");
        QVERIFY(r.last.tempfile_text == expected);
    }
};

QTEST_APPLESS_MAIN(tst_capture)
#include "tst_capture.moc"
