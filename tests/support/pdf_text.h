#pragma once
// Printed PDF files read back with poppler's tools.

#include <algorithm>
#include <cmath>

#include <QList>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace kyt::test {

// The standard output of a program, empty when it failed.
inline QString run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return {};
    return QString::fromUtf8(p.readAllStandardOutput());
}

struct PdfWord {
    int page;
    double x_inches;  // from the page's left edge
    QString text;
    double y_inches = 0;  // top, from the page's top edge
};

inline QList<PdfWord> words_of(const QString& pdf) {
    QList<PdfWord> words;
    int page = 0;
    static const QRegularExpression tag(R"re(<page |<word xMin="([0-9.]+)" yMin="([0-9.]+)"[^>]*>([^<]*)</word>)re");
    for (auto m = tag.globalMatch(run("pdftotext", {"-bbox", pdf, "-"})); m.hasNext();) {
        const auto match = m.next();
        if (match.captured(0).startsWith("<page"))
            ++page;
        else
            words.append({page, match.captured(1).toDouble() / 72.0, match.captured(3),
                          match.captured(2).toDouble() / 72.0});
    }
    return words;
}

// The lines of fixed-pitch text on a page, with their blanks: a word at the
// column of its left edge, `pitch` inches a column from `left`; tops within a
// twentieth of an inch share a line.
inline QStringList fixed_pitch_lines(const QList<PdfWord>& words, int page, double left, double pitch) {
    QList<PdfWord> on_page;
    for (const PdfWord& w : words)
        if (w.page == page) on_page << w;
    std::stable_sort(on_page.begin(), on_page.end(), [](const PdfWord& a, const PdfWord& b) {
        return a.y_inches + 0.05 < b.y_inches || (std::abs(a.y_inches - b.y_inches) <= 0.05 && a.x_inches < b.x_inches);
    });
    QStringList lines;
    double line_top = -1;
    for (const PdfWord& w : on_page) {
        if (lines.isEmpty() || std::abs(w.y_inches - line_top) > 0.05) {
            lines << QString();
            line_top = w.y_inches;
        }
        QString& line = lines.last();
        const int column = static_cast<int>(std::lround((w.x_inches - left) / pitch));
        line = line.leftJustified(std::max<int>(column, line.size() + (line.isEmpty() ? 0 : 1)), ' ') + w.text;
    }
    return lines;
}

inline QRegularExpressionMatch pdf_info(const QString& pdf, const QString& pattern) {
    return QRegularExpression(pattern).match(run("pdfinfo", {pdf}));
}
inline int page_count(const QString& pdf) { return pdf_info(pdf, R"(Pages:\s+(\d+))").captured(1).toInt(); }
inline bool is_landscape(const QString& pdf) {
    const auto m = pdf_info(pdf, R"(Page size:\s+([0-9.]+) x ([0-9.]+))");
    return m.captured(1).toDouble() > m.captured(2).toDouble();
}

inline QStringList page_texts(const QString& pdf) {
    QStringList pages = run("pdftotext", {"-layout", pdf, "-"}).split('\f');
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty()) pages.removeLast();
    return pages;
}

}  // namespace kyt::test
