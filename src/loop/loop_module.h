#pragma once

#include "diag/module_outputs.h"
#include "loop/loop_points.h"
#include "project/line_work.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// The module that a loop check speaks to: found by the line file, or as the session's list has it, and from
/// then on the only and selected entry of the session while something is done.
class LoopModule {
public:
    /// `session`: with its own list.
    LoopModule(const Session& session, const LineFile& file);

    /// Makes the module of that channel the session's: asks for it unless it was spoken to last. Empty when
    /// it is there, else why not, a sentence. Throws `RuntimeFailure` when the port fails.
    std::string Enter(Session& session, const LoopPoint& point);
    /// What was learnt of it is kept for the next time.
    void Leave(const Session& session);
    /// The next one asks for it again.
    void Forget() { record_.reset(); }

    /// The output of that channel; null when the module has it not, or does not tell. Within `Enter` and
    /// `Leave`.
    const NamedOutput* OutputOf(Session& session, const LoopPoint& point);

private:
    void Install(Session& session) const;

    std::map<std::int16_t, Contact> contacts_; // by address
    std::optional<ModuleRecord> record_;
    std::int16_t scanIndex_ = -1;
    std::int64_t believedSince_ = -1;
    std::vector<NamedOutput> outputs_; // once asked for
};

} // namespace kavro
