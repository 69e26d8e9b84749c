#include "common/qt_text.h"

namespace kyt {

QString qs_message(std::string_view s) {
    const QByteArray bytes(s.data(), static_cast<qsizetype>(s.size()));
    const QString name = QFile::decodeName(bytes);
    // A byte sequence the file system's encoding cannot read comes back as
    // replacement characters; such a text is no name.
    return QFile::encodeName(name) == bytes ? name : qs(s);
}

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
