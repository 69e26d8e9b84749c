#pragma once
// Conversions between the core's byte texts and Qt's strings: one byte is one
// character (Latin-1), as in the console's files and on the serial line.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <string>
#include <string_view>

namespace kyt {

inline QString qs(std::string_view s) { return QString::fromLatin1(s.data(), static_cast<qsizetype>(s.size())); }
inline std::string ss(const QString& s) { return s.toLatin1().toStdString(); }
inline std::string ss(const QByteArray& b) { return std::string(b.constData(), static_cast<std::size_t>(b.size())); }

// File and folder names are the exception: the core keeps them as the bytes
// the file system takes (what fopen and the command line see), so a name
// outside ASCII crosses to Qt and back in the file system's encoding. Texts
// that merely carry a name, such as a window caption, cross the same way.
inline QString qs_file(std::string_view s) {
    return QFile::decodeName(QByteArray(s.data(), static_cast<qsizetype>(s.size())));
}
inline std::string ss_file(const QString& s) { return ss(QFile::encodeName(s)); }

// A message shown to the operator: the console's texts with, often, a file
// name in the file system's bytes. Read as such when the bytes are valid
// there; a text that is not (a one-byte character from a file) is read one
// byte a character, as qs does. For ASCII the two are the same.
QString qs_message(std::string_view s);

// A caption with an access key ("&Test Port") as rich text that underlines
// the key, for a label that names another control's key without taking it.
QString underlined_access_key(const QString& caption);

}  // namespace kyt
