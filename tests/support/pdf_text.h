#pragma once
// Printed PDF files read back with poppler's tools.

#include <QtCore>

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
        const auto w = m.next();
        if (w.captured(0).startsWith("<page")) ++page;
        else words.append({page, w.captured(1).toDouble() / 72.0, w.captured(3), w.captured(2).toDouble() / 72.0});
    }
    return words;
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
