#pragma once

#include <QByteArray>
#include <QJsonObject>

#include <string>

class QFile;

namespace kavro {

/// Opens a file to be read. Throws `RuntimeFailure` when it cannot be read, is no regular file or is larger
/// than `largest` bytes; the description begins with a small letter, to follow on the file's name.
void OpenToRead(QFile& file, long long largest);

/// The bytes of a file. Throws `RuntimeFailure` likewise.
QByteArray ReadFileBytes(const std::string& path, long long largest);

/// The one object that a JSON text holds. Throws `RuntimeFailure` likewise.
QJsonObject JsonObjectOf(const QByteArray& text);

/// The one object that a JSON file holds. Throws `RuntimeFailure` when the file cannot be read, is larger
/// than `largest` bytes, or holds something else; the description begins with a small letter, to follow on
/// the file's name.
QJsonObject ReadJsonObject(const std::string& path, long long largest);

} // namespace kavro
