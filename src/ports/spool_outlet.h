#pragma once

#include "ports/spool_file.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// The end of a spool from which one destination is served, used in the thread that made it alone while
/// another one fills the spool. What was given out is given out again until it is done, also after a kill.
/// All calls throw `SqlFailure` when the file cannot be used.
class SpoolOutlet {
public:
    /// Opens the file of a `Spool` that is open and was given the name. Throws `RuntimeFailure`.
    SpoolOutlet(const std::string& path, std::string name);

    /// The first rows that are not done, in order, `most` at most.
    std::vector<SpoolRow> Next(std::size_t most) const;

    /// Nothing up to this row needs to be given out any more. Also holds, for as long as this object lives,
    /// when it cannot be written.
    void Done(std::int64_t upToId);

    /// Rows that are not done. Looks at each: not for every turn.
    std::int64_t Waiting() const;

    /// Readings that were lost to this outlet ever since the file was made: the spool was full, or could not
    /// be written.
    std::int64_t Lost() const;

    /// What was lost to this outlet and not told yet.
    std::vector<SpoolGap> Gaps() const;

    /// These gaps are told; one that has grown meanwhile stays, as does one when it cannot be written.
    void GapsDone(const std::vector<SpoolGap>& gaps);

private:
    void Write(const std::function<void()>& change) const;
    void MakeRoom() const;

    SpoolConnection connection_;
    std::string name_;
    std::int64_t done_ = 0; // id of a row
};

} // namespace kavro
