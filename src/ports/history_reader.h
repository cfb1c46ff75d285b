#pragma once

#include "ports/history_schema.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Which readings of a history are meant; what is left empty is not asked for.
struct HistoryRange {
    std::string Line{}; ///< as it was named
    std::optional<std::int16_t> Address{};
    std::string Channel{};                ///< upper or lower case
    std::optional<std::int64_t> FromMs{}; ///< UTC, inclusive
    std::optional<std::int64_t> ToMs{};   ///< UTC, not inclusive
};

/// A reading as a history has it.
struct KeptReading {
    std::string Line;
    std::int64_t UnixMs = 0;
    std::int64_t Address = 0;
    std::string Model, Channel;
    std::optional<double> Number;
    std::string Text, Unit, State;
};

/// A time during which a history could not be written.
struct KeptGap {
    std::string Line;
    std::int64_t FromMs = 0, ToMs = 0; ///< the first lost reading, and when storing worked again
    std::int64_t Lost = 0;             ///< readings
    std::string Reason;
};

/// Reads a history, also while another program writes it.
class HistoryReader {
public:
    /// Opens the file to be read only. Throws `RuntimeFailure` when it cannot be opened or is no history.
    explicit HistoryReader(const std::string& path)
        : path_(path), connection_(path, HistoryConnection::Access::Read) {}

    /// Hands the readings of the range to `take`, in order of time, line, address and channel, until it
    /// returns false. What is written meanwhile is not among them. Keeps some readings of each value in
    /// memory, however many there are, and never holds a writer up. Throws `RuntimeFailure` when the file
    /// cannot be read.
    void Read(const HistoryRange& range, const std::function<bool(const KeptReading& reading)>& take) const;

    /// The gaps of lines in the range, in order. Throws likewise.
    std::vector<KeptGap> Gaps(const HistoryRange& range) const;

    /// The values that it has of the range, at whatever time. Throws likewise.
    std::vector<HistoryValue> Values(const HistoryRange& range) const;

private:
    std::string path_;
    HistoryConnection connection_;
};

} // namespace kavro
