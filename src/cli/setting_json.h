#pragma once

#include "config/setting_value.h"

#include <QJsonValue>

namespace kavro {

/// A setting's value as JSON has it: true or false, a number, a string, an array of numbers.
QJsonValue ToJson(const SettingValue& value);

/// The value that JSON has. Throws `RuntimeFailure` for null, an object, or an array of anything but whole
/// numbers.
SettingValue FromJson(const QJsonValue& json);

} // namespace kavro
