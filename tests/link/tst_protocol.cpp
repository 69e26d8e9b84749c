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
        QTest::newRow("start occlusion") << bytes(command_start_test('D', test_occlusion)) << QByteArray("RTD4\r");
        QTest::newRow("fresh form's test number 0") << bytes(command_start_test('B', 0)) << QByteArray("RTB0\r");
        QTest::newRow("two-digit number, no blank") << bytes(command_start_test('B', 12)) << QByteArray("RTB12\r");
        QTest::newRow("attach") << bytes(command_attach_test('C', test_single_rate)) << QByteArray("GRC1\r");
        QTest::newRow("poll") << bytes(command_poll('B')) << QByteArray("GRB\r");
        QTest::newRow("fixed occlusion A") << bytes(command_start_occlusion_fixed('A')) << QByteArray("RTA4\r");
        QTest::newRow("fixed occlusion D") << bytes(command_start_occlusion_fixed('D')) << QByteArray("RTD4\r");
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
        QTest::newRow("n LF") << QByteArray("n\n") << ReplyError::not_connected << ReplyError::not_connected;
        QTest::newRow("n NUL") << QByteArray("n\0", 2) << ReplyError::not_connected << ReplyError::not_connected;
        QTest::newRow("unit separator is below 32") << QByteArray("e\x1F") << ReplyError::not_running
                                                    << ReplyError::not_running;
        QTest::newRow("blank is not below 32") << QByteArray("e ") << ReplyError::none << ReplyError::not_running;
        QTest::newRow("high byte is not below 32") << QByteArray("e\xC8") << ReplyError::none
                                                   << ReplyError::not_running;
        QTest::newRow("one character") << QByteArray("?") << ReplyError::none << ReplyError::transmission;
        QTest::newRow("three characters") << QByteArray("e\r\n") << ReplyError::none << ReplyError::not_running;
        QTest::newRow("capital E is no code") << QByteArray("E\r") << ReplyError::none << ReplyError::none;
        QTest::newRow("other letter") << QByteArray("x\r") << ReplyError::none << ReplyError::none;
        QTest::newRow("empty") << QByteArray() << ReplyError::none << ReplyError::none;
    }
    void error_replies() {
        QFETCH(QByteArray, reply);
        QFETCH(kyt::ReplyError, exact);
        QFETCH(kyt::ReplyError, by_first);
        QCOMPARE(classify_error_reply(text(reply)), exact);
        QCOMPARE(short_reply_error(text(reply)), by_first);
    }

    void error_texts_data() {
        QTest::addColumn<kyt::ReplyError>("error");
        QTest::addColumn<QString>("expected");
        QTest::newRow("?") << ReplyError::transmission
                           << "Unsuccessful transmission, check all hardware connections and try again.";
        QTest::newRow("e") << ReplyError::not_running << "Test or Autosequence is not running";
        QTest::newRow("n") << ReplyError::not_connected << "Current channel selected is not connected.";
        QTest::newRow("none") << ReplyError::none << "";
    }
    void error_texts() {
        QFETCH(kyt::ReplyError, error);
        QFETCH(QString, expected);
        QCOMPARE(QString::fromLatin1(reply_error_text(error)), expected);
    }

    void poll_reply_data() {
        QTest::addColumn<QByteArray>("raw");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("is_data");
        QTest::addColumn<kyt::ReplyError>("error");
        QTest::newRow("e CR is 2 long") << QByteArray("e\r") << QByteArray("e\r") << false << ReplyError::not_running;
        QTest::newRow("blanks around are trimmed, CR stays")
            << QByteArray("  n\r  ") << QByteArray("n\r") << false << ReplyError::not_connected;
        QTest::newRow("empty: nothing") << QByteArray() << QByteArray() << false << ReplyError::none;
        QTest::newRow("blanks only: nothing") << QByteArray("   ") << QByteArray() << false << ReplyError::none;
        QTest::newRow("short, other letter") << QByteArray("ok") << QByteArray("ok") << false << ReplyError::none;
        QTest::newRow("? and 3 more is data") << QByteArray("?abc") << QByteArray("?abc") << true << ReplyError::none;
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

    void single_rate_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QChar>("range");
        QTest::addColumn<QList<int>>("time");  // hours, minutes, seconds
        QTest::addColumn<QList<double>>("values");  // flow, average, volume, pressure
        QTest::newRow("full reply") << QByteArray("B, 1, 12, 30, 99.87, 100.02, 20.843, 3.5\r\n") << QChar('B')
                                    << QList<int>{1, 12, 30} << QList<double>{99.87, 100.02, 20.843, 3.5};
        QTest::newRow("no comma fills all eight") << QByteArray("7.5") << QChar('7') << QList<int>{8, 8, 8}
                                                  << QList<double>{7.5, 7.5, 7.5, 7.5};
        QTest::newRow("fewer fields repeat the last") << QByteArray("A, 1, 2") << QChar('A') << QList<int>{1, 2, 2}
                                                      << QList<double>{2, 2, 2, 2};
        QTest::newRow("? and text is data with zeros") << QByteArray("?abc") << QChar('?') << QList<int>{0, 0, 0}
                                                       << QList<double>{0, 0, 0, 0};
        QTest::newRow("? CR LF is data with zeros") << QByteArray("?\r\n") << QChar('?') << QList<int>{0, 0, 0}
                                                    << QList<double>{0, 0, 0, 0};
        QTest::newRow("range is the first character only") << QByteArray("HI, 0, 0, 5, 1, 2, 3, 4") << QChar('H')
                                                            << QList<int>{0, 0, 5} << QList<double>{1, 2, 3, 4};
        QTest::newRow("range field trimmed") << QByteArray("C  , 0,0,0,1,1,1,1") << QChar('C')
                                             << QList<int>{0, 0, 0} << QList<double>{1, 1, 1, 1};
        QTest::newRow("empty fields read 0") << QByteArray("A,,,,,,,") << QChar('A') << QList<int>{0, 0, 0}
                                             << QList<double>{0, 0, 0, 0};
        QTest::newRow("words read 0") << QByteArray("A, x, 2, y, high, 5, low, 7") << QChar('A')
                                      << QList<int>{0, 2, 0} << QList<double>{0, 5, 0, 7};
        QTest::newRow("times round halves to even") << QByteArray("A, 2.5, 3.5, -0.5, 1, 1, 1, 1") << QChar('A')
                                                    << QList<int>{2, 4, 0} << QList<double>{1, 1, 1, 1};
        QTest::newRow("extra fields are not read") << QByteArray("A,1,2,3,4,5,6,7,8,9") << QChar('A')
                                                   << QList<int>{1, 2, 3} << QList<double>{4, 5, 6, 7};
        QTest::newRow("negative flow") << QByteArray("A, 0, 0, 1, -0.25, 0, 0, 0") << QChar('A')
                                       << QList<int>{0, 0, 1} << QList<double>{-0.25, 0, 0, 0};
        QTest::newRow("16-bit edge") << QByteArray("A, 32767, -32768.5, 0, 1, 1, 1, 1") << QChar('A')
                                     << QList<int>{32767, -32768, 0} << QList<double>{1, 1, 1, 1};
    }
    void single_rate() {
        QFETCH(QByteArray, reply);
        QFETCH(QChar, range);
        QFETCH(QList<int>, time);
        QFETCH(QList<double>, values);
        const auto p = process_rt_data(text(reply));
        QVERIFY2(p.ok(), p.error.c_str());
        QCOMPARE(QChar(p.data.range), range);
        QCOMPARE((QList<int>{p.data.hours, p.data.minutes, p.data.seconds}), time);
        QCOMPARE((QList<double>{p.data.flow, p.data.avg_flow, p.data.volume, p.data.pressure}), values);
    }

    void occlusion_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QList<int>>("time");       // minutes, seconds
        QTest::addColumn<QList<double>>("values");  // psi, mmHg, kPa
        QTest::newRow("full reply") << QByteArray("O, 1, 35, 14.85, 768\r\n") << QList<int>{1, 35}
                                    << QList<double>{14.85, 768, 14.85 * 7.51};
        QTest::newRow("no comma fills all five") << QByteArray("3 ") << QList<int>{3, 3}
                                                 << QList<double>{3, 3, 3 * 7.51};
        QTest::newRow("fewer fields repeat the last") << QByteArray("O, 2, 10") << QList<int>{2, 10}
                                                      << QList<double>{10, 10, 10 * 7.51};
        QTest::newRow("? and text is data with zeros") << QByteArray("?xy") << QList<int>{0, 0}
                                                       << QList<double>{0, 0, 0};
    }
    void occlusion() {
        QFETCH(QByteArray, reply);
        QFETCH(QList<int>, time);
        QFETCH(QList<double>, values);
        const auto p = process_ot_data(text(reply));
        QVERIFY2(p.ok(), p.error.c_str());
        QCOMPARE((QList<int>{p.data.minutes, p.data.seconds}), time);
        QCOMPARE((QList<double>{p.data.psi, p.data.mmhg, p.data.kpa}), values);
    }

    // A reply whose numbers cannot be held is dropped whole with a reason,
    // never half taken.
    void unreadable_replies_data() {
        QTest::addColumn<bool>("occlusion");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QString>("field");
        QTest::newRow("hours beyond 16 bits") << false << QByteArray("A, 40000, 0, 0, 1, 1, 1, 1") << "field 2";
        QTest::newRow("seconds round past the top") << false << QByteArray("A, 0, 0, 32767.5, 1, 1, 1, 1")
                                                    << "field 4";
        QTest::newRow("flow too large for a double") << false << QByteArray("A, 0, 0, 1, 1e400, 1, 1, 1")
                                                     << "field 5";
        QTest::newRow("no comma, too large") << false << QByteArray("99999") << "field 2";
        QTest::newRow("occlusion minutes") << true << QByteArray("O, -40000, 1, 1, 1") << "field 2";
        QTest::newRow("occlusion mmHg") << true << QByteArray("O, 1, 1, 1, 1e999") << "field 5";
    }
    void unreadable_replies() {
        QFETCH(bool, occlusion);
        QFETCH(QByteArray, reply);
        QFETCH(QString, field);
        const std::string error = occlusion ? process_ot_data(text(reply)).error : process_rt_data(text(reply)).error;
        QVERIFY(QString::fromStdString(error).contains(field));
    }
};

QTEST_APPLESS_MAIN(tst_protocol)
#include "tst_protocol.moc"
