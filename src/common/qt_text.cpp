#include "common/qt_text.h"

namespace kyt {

QString underlined_access_key(const QString& caption) {
    QString out;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        const QChar c = caption[i];
        if (c == '&' && i + 1 < caption.size()) {
            const QChar next = caption[++i];
            out += next == '&' ? QString("&amp;") : "<u>" + QString(next).toHtmlEscaped() + "</u>";
        } else {
            out += QString(c).toHtmlEscaped();
        }
    }
    return out;
}

}  // namespace kyt
