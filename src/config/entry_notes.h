#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// What the user has to know of an entry before OK, as its text stands; empty when there is nothing. Nothing
/// of what is sent depends on them. `separator` is the user's decimal separator.

/// An address that another module of the list has.
std::string AddressNote(const Session& session, int index, const std::string& address);

/// A count of which not all that is written is sent: anything but a whole number in digits.
std::string CountNote(const std::string& count, const std::string& separator);

/// A width that is sent as it is written although it is no whole number, or that is empty.
std::string WidthNote(const std::string& width, const std::string& separator);

/// A level that is not sent as it is written: not a number, or with more than one decimal.
std::string LevelNote(const std::string& level, const std::string& separator);

} // namespace kavro
