#pragma once

#include "link/runtime_failure.h"
#include "ports/spool_file.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// A destination does not want what it is sent, or whoever sends it, until somebody changes something: a
/// password, a certificate, a right.
class DestinationRefused : public RuntimeFailure {
public:
    using RuntimeFailure::RuntimeFailure;
};

/// A destination cannot be reached or has gone; trying again later may do.
class DestinationAway : public RuntimeFailure {
public:
    using RuntimeFailure::RuntimeFailure;
};

/// Where the readings of a spool are sent: a database or a broker. Used by a `Sender` in its thread alone,
/// where it is destroyed, too; made in any. Each call ends by itself within some seconds. A failure is one of
/// the two above, a reason in words ("connection refused") without the name of the destination; nothing is
/// connected behind it.
class Destination {
public:
    Destination() = default;
    virtual ~Destination() = default;
    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;

    /// As the user is told of it, without a secret: "The database meter@db.example/site".
    virtual std::string Name() const = 0;

    /// Rows that it takes in one `Send`.
    virtual std::size_t Most() const = 0;

    /// How long rows are let gather, in ms, before they are sent unless there are `Most()`.
    virtual int GatherMs() const = 0;

    /// Connects, and may tell how many readings are lost ever since the spool was made. Returns the id of the
    /// last row that it has for certain, where it keeps that itself.
    virtual std::optional<std::int64_t> Connect(std::int64_t lostEver) = 0;

    /// Sends rows in order, none of which it is known to have. Returns the id of the last of them up to which
    /// it has all for certain; behind a failure it is not known how many it has.
    virtual std::int64_t Send(const std::vector<SpoolRow>& rows) = 0;

    /// Is told what will never come, and how many readings that are ever since the spool was made. The same
    /// gap may be told again, also with more that is lost.
    virtual void SendGaps(const std::vector<SpoolGap>& gaps, std::int64_t lostEver) = 0;

    /// Nothing is to be sent now; a look at whether it is still there, for whom that matters.
    virtual void Idle() {}

    /// An orderly end of the connection; does nothing without one and does not throw.
    virtual void Close() = 0;
};

} // namespace kavro
