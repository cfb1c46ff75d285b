#pragma once

#include "map/session.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Sends the command that drives an output; true when the module accepted it.
using Drive = std::function<bool()>;

/// One output of a module under the name that the command line has for it.
struct NamedOutput {
    std::string Name; ///< "3", "A", "B7", or "all" for all of them at once
    /// Turns what it is to become into a command, without sending it. Throws `RuntimeFailure` when that is
    /// not possible.
    std::function<Drive(const std::string& value)> Plan;
};

/// The outputs of the selected entry; none for a model without outputs. An 8460 is asked which of its ports
/// are outputs; nothing when it does not tell. They hold on to the session.
std::optional<std::vector<NamedOutput>> OutputsOf(Session& session);

} // namespace kavro
