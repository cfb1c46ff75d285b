#pragma once

#include <optional>
#include <string>

namespace kavro {

/// A value in the words in which it is printed.
struct ValueRow {
    std::string Time, Address, Model, Channel, Value, Unit, State;
};

/// The first line of the columns, with its line end.
std::string ColumnHeading();

/// A line of the columns, with its line end.
std::string ColumnLine(const ValueRow& row);

/// A JSON object on one line, with "line" where it has a name. "address" is a number, "value" is `number` or
/// null, and "text" the value as it is shown.
std::string JsonRow(const ValueRow& row, std::optional<double> number, const std::string& line = {});

} // namespace kavro
