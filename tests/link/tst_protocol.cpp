#include <QtTest>

#include "link/protocol.h"

using namespace kyt;

Q_DECLARE_METATYPE(kyt::ReplyError)

namespace {

QByteArray bytes(const std::string& s) { return QByteArray(s.data(), static_cast<qsizetype>(s.size())); }
std::string text(const QByteArray& b) { return std::string(b.constData(), static_cast<std::size_t>(b.size())); }

}  // namespace

class tst_protocol : public QObject {
    Q_OBJECT
private slots:
    void commands_data() {
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("data log of D, byte for byte")
            << bytes(command_download('D', download_data_log)) << QByteArray("\x44\x4C\x44\x32\x0D");
        QTest::newRow("summary") << bytes(command_download('A', download_summary)) << QByteArray("DLA1\r");
        QTest::newRow("test pattern is fixed to A") << bytes(command_test_pattern()) << QByteArray("DLA3\r");
        QTest::newRow("stop") << bytes(command_stop('C')) << QByteArray("STC\r");
        QTest::newRow("print") << bytes(command_print_summary('B')) << QByteArray("PRB1\r");
        QTest::newRow("start single rate") << bytes(command_start_test('A', test_single_rate)) << QByteArray("RTA1\r");
        QTest::newRow("two-digit number, no blank") << bytes(command_start_test('B', 12)) << QByteArray("RTB12\r");
        QTest::newRow("attach") << bytes(command_attach_test('C', test_single_rate)) << QByteArray("GRC1\r");
        QTest::newRow("poll") << bytes(command_poll('B')) << QByteArray("GRB\r");
        QTest::newRow("fixed occlusion A") << bytes(command_start_occlusion_fixed('A')) << QByteArray("RTA4\r");
        QTest::newRow("fixed occlusion, no such channel") << bytes(command_start_occlusion_fixed('E')) << QByteArray();
    }
    void commands() {
        QFETCH(QByteArray, sent);
        QFETCH(QByteArray, expected);
        QCOMPARE(sent, expected);
    }

    void error_replies_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<kyt::ReplyError>("exact");  // the 2-character rule
        QTest::addColumn<kyt::ReplyError>("by_first");  // first character alone
        QTest::newRow("e CR") << QByteArray("e\r") << ReplyError::not_running << ReplyError::not_running;
        QTest::newRow("? CR") << QByteArray("?\r") << ReplyError::transmission << ReplyError::transmission;
        QTest::newRow("n NUL") << QByteArray("n\0", 2) << ReplyError::not_connected << ReplyError::not_connected;
        QTest::newRow("unit separator is below 32") << QByteArray("e\x1F") << ReplyError::not_running
                                                    << ReplyError::not_running;
        QTest::newRow("blank is not below 32") << QByteArray("e ") << ReplyError::none << ReplyError::not_running;
        QTest::newRow("one character") << QByteArray("?") << ReplyError::none << ReplyError::transmission;
        QTest::newRow("three characters") << QByteArray("e\r\n") << ReplyError::none << ReplyError::not_running;
        QTest::newRow("empty") << QByteArray() << ReplyError::none << ReplyError::none;
    }
    void error_replies() {
        QFETCH(QByteArray, reply);
        QFETCH(kyt::ReplyError, exact);
        QFETCH(kyt::ReplyError, by_first);
        QCOMPARE(classify_error_reply(text(reply)), exact);
        QCOMPARE(short_reply_error(text(reply)), by_first);
    }

    void poll_reply_data() {
        QTest::addColumn<QByteArray>("raw");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("is_data");
        QTest::addColumn<kyt::ReplyError>("error");
        QTest::newRow("e CR is 2 long") << QByteArray("e\r") << QByteArray("e\r") << false << ReplyError::not_running;
        QTest::newRow("blanks around are trimmed, CR stays")
            << QByteArray("  n\r  ") << QByteArray("n\r") << false << ReplyError::not_connected;
        QTest::newRow("short, other letter") << QByteArray("ok") << QByteArray("ok") << false << ReplyError::none;
        QTest::newRow("? CR LF is 3 long: data") << QByteArray("?\r\n") << QByteArray("?\r\n") << true
                                                 << ReplyError::none;
        QTest::newRow("data reply") << QByteArray(" B, 0, 1, 2, 3, 4, 5, 6\r\n")
                                    << QByteArray("B, 0, 1, 2, 3, 4, 5, 6\r\n") << true << ReplyError::none;
    }
    void poll_reply() {
        QFETCH(QByteArray, raw);
        QFETCH(QByteArray, text);
        QFETCH(bool, is_data);
        QFETCH(kyt::ReplyError, error);
        const PollReply r = take_poll_reply(::text(raw));
        QCOMPARE(bytes(r.text), text);
        QCOMPARE(r.is_data, is_data);
        QCOMPARE(r.error, error);
    }

    // A poll's reply read into its figures; one whose numbers cannot be held
    // is dropped whole with the field that is wrong, never half taken.
    void figures_data() {
        QTest::addColumn<bool>("occlusion");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QChar>("range");  // single rate only
        // Single rate: h, m, s, flow, average, volume, pressure; occlusion: m, s, PSI, mmHg, kPa.
        QTest::addColumn<QList<double>>("figures");
        QTest::addColumn<QString>("wrong");  // the field named when the reply is dropped
        QTest::newRow("full reply") << false << QByteArray("B, 1, 12, 30, 99.87, 100.02, 20.843, 3.5\r\n") << QChar('B')
                                    << QList<double>{1, 12, 30, 99.87, 100.02, 20.843, 3.5} << "";
        QTest::newRow("no comma fills all eight") << false << QByteArray("7.5") << QChar('7')
                                                  << QList<double>{8, 8, 8, 7.5, 7.5, 7.5, 7.5} << "";
        QTest::newRow("fewer fields repeat the last") << false << QByteArray("A, 1, 2") << QChar('A')
                                                      << QList<double>{1, 2, 2, 2, 2, 2, 2} << "";
        QTest::newRow("words read 0") << false << QByteArray("A, x, 2, y, high, 5, low, 7") << QChar('A')
                                      << QList<double>{0, 2, 0, 0, 5, 0, 7} << "";
        QTest::newRow("times round halves to even") << false << QByteArray("A, 2.5, 3.5, -0.5, 1, 1, 1, 1")
                                                    << QChar('A')
                                                    << QList<double>{2, 4, 0, 1, 1, 1, 1} << "";
        QTest::newRow("16-bit edge") << false << QByteArray("A, 32767, -32768.5, 0, 1, 1, 1, 1") << QChar('A')
                                     << QList<double>{32767, -32768, 0, 1, 1, 1, 1} << "";
        QTest::newRow("hours beyond 16 bits") << false << QByteArray("A, 40000, 0, 0, 1, 1, 1, 1") << QChar()
                                              << QList<double>{} << "field 2";
        QTest::newRow("seconds round past the top") << false << QByteArray("A, 0, 0, 32767.5, 1, 1, 1, 1") << QChar()
                                                    << QList<double>{} << "field 4";
        QTest::newRow("flow too large for a double") << false << QByteArray("A, 0, 0, 1, 1e400, 1, 1, 1") << QChar()
                                                     << QList<double>{} << "field 5";
        QTest::newRow("occlusion") << true << QByteArray("O, 1, 35, 14.85, 768\r\n") << QChar()
                                   << QList<double>{1, 35, 14.85, 768, 14.85 * 7.51} << "";
        QTest::newRow("occlusion, fewer fields repeat the last") << true << QByteArray("O, 2, 10") << QChar()
                                                                 << QList<double>{2, 10, 10, 10, 10 * 7.51} << "";
        QTest::newRow("occlusion, ? and text is data with zeros") << true << QByteArray("?xy") << QChar()
                                                                  << QList<double>{0, 0, 0, 0, 0} << "";
        QTest::newRow("occlusion mmHg") << true << QByteArray("O, 1, 1, 1, 1e999") << QChar() << QList<double>{}
                                        << "field 5";
    }
    void figures() {
        QFETCH(bool, occlusion);
        QFETCH(QByteArray, reply);
        QFETCH(QChar, range);
        QFETCH(QList<double>, figures);
        QFETCH(QString, wrong);
        std::string error;
        QList<double> read;
        if (occlusion) {
            const auto p = process_ot_data(text(reply));
            error = p.error;
            if (p.ok()) read = {double(p.data.minutes), double(p.data.seconds), p.data.psi, p.data.mmhg, p.data.kpa};
        } else {
            const auto p = process_rt_data(text(reply));
            error = p.error;
            if (p.ok()) {
                QCOMPARE(QChar(p.data.range), range);
                read = {double(p.data.hours), double(p.data.minutes), double(p.data.seconds), p.data.flow,
                        p.data.avg_flow, p.data.volume, p.data.pressure};
            }
        }
        QCOMPARE(read, figures);
        QVERIFY2(wrong.isEmpty() ? error.empty() : QString::fromStdString(error).contains(wrong), error.c_str());
    }
};

QTEST_APPLESS_MAIN(tst_protocol)
#include "tst_protocol.moc"
