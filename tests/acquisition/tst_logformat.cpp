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

// 1-based numbers of the single-rate rows before which a continuation head stands.
QList<int> rows_opening_pages(SingleRateLog& log, int rows) {
    QList<int> opening;
    for (int i = 1; i <= rows; ++i)
        if (log.row({0, 0, i % 60, 100, 100, 1, 3}).front() == FF) opening << i;
    return opening;
}

}  // namespace

class tst_logformat : public QObject {
    Q_OBJECT
private slots:
    // The 30th row, then every 51st, opens a page (the golden occlusion log has its 29th); a new head counts afresh.
    void page_breaks() {
        SingleRateLog log;
        log.head({}, 'A', test_time);
        QCOMPARE(rows_opening_pages(log, 200), (QList<int>{30, 81, 132, 183}));
        QCOMPARE(log.page_number(), 5);
        log.head({}, 'A', test_time);
        QCOMPARE(rows_opening_pages(log, 30), QList<int>{30});
    }

    // The golden files close with a header entered; these are the other two shapes.
    void closing_lines_data() {
        QTest::addColumn<bool>("summary");
        QTest::addColumn<bool>("header_entered");
        QTest::addColumn<QString>("expected");
        QTest::newRow("log, no header entered") << false << false << "\r\n         END OF DATA\r\n\r\n";
        QTest::newRow("summary, named technician has no line end of its own")
            << true << true
            << "SUMMARY Comment:\r\n\r\n        Technician: J. Doe_______________ Signature:___________________\r\n";
    }
    void closing_lines() {
        QFETCH(bool, summary);
        QFETCH(bool, header_entered);
        QFETCH(QString, expected);
        ReportRec rec;
        rec.technician = "J. Doe";
        const std::string collected = "SUMMARY Comment:\r\n         Technician: ____\r\n";
        const std::string out =
            summary ? summary_file_text(collected, rec, header_entered, '3') : log_close(rec, header_entered);
        QCOMPARE(QString::fromStdString(out), expected);
    }

    // The analyser's own technician line goes with the ten characters before it (summary_golden cuts one).
    void tech_cut_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
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
