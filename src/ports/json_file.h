#pragma once

#include <QJsonObject>

#include <string>

namespace kavro {

/// The one object that a JSON file holds. Throws `RuntimeFailure` when the file cannot be read, is larger
/// than `largest` bytes, or holds something else; the description begins with a small letter, to follow on
/// the file's name.
QJsonObject ReadJsonObject(const std::string& path, long long largest);

} // namespace kavro
