#include <QtTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

#include "acquisition/logformat.h"
#include "common/text.h"
#include "common/file_text.h"
#include "support/test_data.h"

using namespace kyt;

namespace {

const CivilTime test_time{2026, 11, 3, 9, 5, 7, 2};

// The line of a text by its 1-based number, without its CR LF.
std::string line_of(const std::string& text, int number) {
    const auto lines = split_lines(text);
    return number >= 1 && number <= int(lines.size()) ? lines[number - 1] : std::string("<none>");
}

// 1-based numbers of the rows before which a continuation head stands.
QList<int> rows_opening_pages(DataLog& log, int rows) {
    QList<int> opening;
    for (int i = 1; i <= rows; ++i) {
        const std::string piece = log.kind() == LogKind::single_rate
                                      ? static_cast<SingleRateLog&>(log).row({0, 0, i % 60, 100, 100, 1, 3})
                                      : static_cast<OcclusionLog&>(log).row({0, i % 60, 1, 50});
        if (piece.front() == FF) opening << i;
    }
    return opening;
}

}  // namespace

class tst_logformat : public QObject {
    Q_OBJECT
private slots:
    // An overlong record keeps every column of the head in place.
    void head_columns_of_an_overlong_record() {
        const std::string v = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
        const ReportRec rec{v, v, v, v, v, v, v, v, v, v, v, v};
        for (LogKind kind : {LogKind::single_rate, LogKind::occlusion}) {
            const std::string head = log_head(kind, rec, 'A', test_time);
            QCOMPARE(split_lines(head).size(), std::size_t(31));
            for (int n : {15, 17, 19, 21, 23}) QCOMPARE(line_of(head, n).size(), std::size_t(71));
            for (auto [n, column] : {std::pair{15, 23}, {15, 49}, {17, 21}, {17, 55}, {19, 21}, {19, 52}, {23, 21}})
                QCOMPARE(line_of(head, n)[column], 'A');
        }
    }

    // An occlusion log shows the set rate and the volume only together.
    void occlusion_rate_and_volume() {
        ReportRec rec;
        rec.vtbi = "250";
        const auto line_21 = [&] { return line_of(log_head(LogKind::occlusion, rec, 'A', test_time), 21); };
        QCOMPARE(line_21(), "         Set Rate(s): _____________ ml/h  VTBI: ____________________ ml");
        rec.set_rates = "100";
        QCOMPARE(line_21(), "         Set Rate(s): 100__________ ml/h  VTBI: 250_________________ ml");
    }

    void page_breaks_data() {
        QTest::addColumn<bool>("occlusion");
        QTest::addColumn<QList<int>>("expected");
        QTest::newRow("single rate: 30th row, then every 51st") << false << QList<int>{30, 81, 132, 183};
        QTest::newRow("occlusion: 29th row, then every 50th") << true << QList<int>{29, 79, 129, 179};
    }
    void page_breaks() {
        QFETCH(bool, occlusion);
        QFETCH(QList<int>, expected);
        SingleRateLog single;
        OcclusionLog occl;
        DataLog& log = occlusion ? static_cast<DataLog&>(occl) : static_cast<DataLog&>(single);
        log.head({}, 'A', test_time);
        QCOMPARE(rows_opening_pages(log, 200), expected);
        QCOMPARE(log.page_number(), expected.size() + 1);
        // A new head starts the counting over.
        log.head({}, 'A', test_time);
        QCOMPARE(rows_opening_pages(log, expected.first()), QList<int>{expected.first()});
    }

    // A hundredth page takes a third digit.
    void page_mark_of_page_100() {
        SingleRateLog log;
        log.head({}, 'A', test_time);
        std::string last;
        while (log.page_number() < 100) last = log.row({});
        QCOMPARE(QString::fromStdString(line_of(last, 3)), QString(67, ' ') + "p. 100");
    }

    void closing_lines_data() {
        QTest::addColumn<bool>("summary");
        QTest::addColumn<QString>("technician");
        QTest::addColumn<bool>("header_entered");
        QTest::addColumn<QString>("expected");
        const QString end = "\r\n         END OF DATA\r\n\r\n";
        QTest::newRow("log, no pump type, named technician")  // the golden logs have the others
            << false << "J. Doe" << true
            << end + "\r\n         Technician: J. Doe______________ Signature:___________________\r\n";
        QTest::newRow("log, no header entered") << false << "J. Doe" << false << end;
        const QString text = "SUMMARY Comment:\r\n";
        QTest::newRow("summary, named technician has no line end of its own")
            << true << "J. Doe" << true
            << text + "\r\n        Technician: J. Doe_______________ Signature:___________________\r\n";
        QTest::newRow("summary, no header: only the print's line end")
            << true << "J. Doe" << false << text + "\r\n";
    }
    void closing_lines() {
        QFETCH(bool, summary);
        QFETCH(QString, technician);
        QFETCH(bool, header_entered);
        QFETCH(QString, expected);
        ReportRec rec;
        rec.technician = technician.toStdString();
        const std::string collected = "SUMMARY Comment:\r\n         Technician: ____\r\n";
        const std::string out =
            summary ? summary_file_text(collected, rec, header_entered, '3') : log_close(rec, header_entered);
        QCOMPARE(QString::fromStdString(out), expected);
    }

    void tech_cut_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("10 characters before Tech") << "SUMMARY\r\nRate 100\r\n         Technician: ____\r\n\a"
                                                   << "SUMMARY\r\nRate 100\r\n";
        QTest::newRow("Tech at 10 keeps nothing") << "123456789Technician" << "";
        QTest::newRow("no Tech keeps all") << "SUMMARY\r\nRate 100\r\n\a" << "SUMMARY\r\nRate 100\r\n\a";
    }
    void tech_cut() {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(QString::fromStdString(cut_at_tech(text.toStdString())), expected);
    }

    void summary_golden() {
        ReportRec rec{"Acme Pumps", "Volumat X", "SN-1", "C42", "ICU", "Ward 3", "100", "250", "checked", "", "LVP", "5"};
        std::string collected = test_data("logs/analyser_summary.txt");
        collected.back() = '\r';  // the block with the character 7 leaves a line end in its place
        collected += '\n';
        QCOMPARE(summary_file_text(collected, rec, true, '3'), test_data("reports/summary.sum"));
    }

    void golden_logs() {
        const ReportRec rec{"Northfield Infusion Systems Ltd", "VP-7", "000123456789", "CTL-0042",
                            "Biomedical Eng.", "Bench 2", "100", "", "Annual check", "", "Large volume", "5"};
        SingleRateLog single;
        std::string text = single.head(rec, 'C', test_time);
        const double flows[] = {9.999, 10, 99.999, 999.96, 1000, 1234.5, -0.5, 0};
        for (int i = 0; i < 85; ++i)
            text += single.row({i / 3600, (i * 30 / 60) % 60, (i * 30) % 60, i < 8 ? flows[i] : 95 + i * 0.37,
                                99.5 + i * 0.01, i * 0.8325, i % 2 ? 12.5 : 3});
        QCOMPARE(text + single.close(rec, true), test_data("logs/single_rate.log"));
        OcclusionLog occlusion;
        text = occlusion.head(rec, 'D', test_time);
        for (int i = 0; i < 35; ++i) text += occlusion.row({i / 60, i % 60, i * 0.25, i * 12.93});
        QCOMPARE(text + occlusion.close(rec, true), test_data("logs/occlusion.log"));
    }

    // A run killed while it logs keeps every row: each piece reaches the file as it is written.
    void killed_run_keeps_rows() {
        const QString path = QDir::temp().filePath(QString("kyt-killed-%1.log").arg(getpid()));
        SingleRateLog log;
        std::vector<std::string> pieces{log.head({}, 'A', test_time)};
        for (int i = 0; i < 40; ++i) pieces.push_back(log.row({0, 0, i, 100, 100, i * 0.1, 3}));
        const pid_t child = fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            LogFile file;
            if (!file.open(path.toStdString())) _exit(1);
            for (const std::string& piece : pieces) file.write(piece);
            raise(SIGKILL);
        }
        int status = 0;
        waitpid(child, &status, 0);
        QVERIFY(WIFSIGNALED(status));
        const auto text = read_text_file(path.toStdString());
        QFile::remove(path);
        std::string expected;
        for (const std::string& piece : pieces) expected += piece;
        QCOMPARE(text.value_or("(none)"), expected);
    }
};

QTEST_APPLESS_MAIN(tst_logformat)
#include "tst_logformat.moc"
