#pragma once

#include "map/exchange_words.h"
#include "traffic/traffic_log.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace kavro {

/// The columns in which rows are shown, from the left.
enum class TrafficColumn { Time, Since, Address, Baud, Command, Reply, ReplyTime, Outcome, Words };

inline constexpr std::array<const char*, 9> TrafficHeadings = {
    "Time", "Since", "Address", "Baud", "Command", "Reply", "ms", "Outcome", "In words"};

/// How rows are shown.
struct TrafficStyle {
    bool Hex = false;                   ///< bytes as "24 30 0D" in place of "$0<0D>"
    std::string DecimalSeparator = "."; ///< UTF-8
};

/// Bytes as they are shown.
std::string BytesText(std::string_view bytes, bool hex);

/// "14:05:09.120", local time.
std::string TimeOfDay(std::int64_t utc);

/// Microseconds in milliseconds, "16.2"; empty below zero, for a time that is not known.
std::string MillisecondsText(std::int64_t us);

/// "11 (0BH)".
std::string AddressText(int address);

/// What was asked, and behind an arrow what was answered; empty when nothing is understood.
std::string WordsText(const TrafficRow& row, const KnownModules& known);

/// What rows are put into words with.
struct TrafficView {
    const TrafficLog& Log;
    const KnownModules& Known;
    TrafficStyle Style;
};

/// The text of a row in a column: local time of day with milliseconds, seconds since the row before in the
/// log, milliseconds to the last character of the reply. The row must be in the log.
std::string ColumnText(const TrafficView& view, std::int64_t number, TrafficColumn column);

/// Lines of a text file for the user, in aligned columns, in local time; the head has the headings.
std::string TrafficTextHead();
std::string TrafficTextLine(const TrafficView& view, std::int64_t number);

/// Lines of a CSV file (RFC 4180, with "," and "."): times are UTC, addresses decimal, bytes visible texts.
std::string TrafficCsvHead();
std::string TrafficCsvLine(const TrafficView& view, std::int64_t number);

} // namespace kavro
