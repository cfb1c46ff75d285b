#pragma once

#include <QByteArray>
#include <QJsonObject>

#include <string>

namespace kavro {

/// The bytes of a file. Throws `RuntimeFailure` when it cannot be read or is larger than `largest` bytes; the
/// description begins with a small letter, to follow on the file's name.
QByteArray ReadFileBytes(const std::string& path, long long largest);

/// The one object that a JSON text holds. Throws `RuntimeFailure` likewise.
QJsonObject JsonObjectOf(const QByteArray& text);

/// The one object that a JSON file holds. Throws `RuntimeFailure` when the file cannot be read, is larger
/// than `largest` bytes, or holds something else; the description begins with a small letter, to follow on
/// the file's name.
QJsonObject ReadJsonObject(const std::string& path, long long largest);

} // namespace kavro
