#pragma once

#include "diag/analog_output_panel.h"
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
    std::string Name;         ///< "3", "A", "B7", or "all" for all of them at once; empty: it has no other
    int Channel = -1;         ///< as in `ModuleTags::Channels`; -1 for "all"
    bool Digital = true;      ///< switched on and off; else it stands at a value
    double Low = 0, High = 0; ///< limits of the value, in `Unit`; of a digital one 0
    std::string Unit{};       ///< "mA" or "V"; empty for a digital one
    /// Turns what it is to become into a command, without sending it. Throws `RuntimeFailure` when that is
    /// not possible.
    std::function<Drive(const std::string& value)> Plan;
    /// What the module says that it stands at now, in words that `Plan` takes: "12.500", "+7.250", "on",
    /// "0F05"; nothing when it does not tell. Throws `RuntimeFailure` when the port fails.
    std::function<std::optional<std::string>()> Read;
    /// The same of an analog one with what lies outside the limits, which `Read` does not tell; else empty.
    std::function<std::optional<ToldOutput>()> ReadAny{};
};

/// The outputs of the selected entry; none for a model without outputs. An 8460 is asked which of its ports
/// are outputs; nothing when it does not tell. They hold on to the session.
std::optional<std::vector<NamedOutput>> OutputsOf(Session& session);

/// What an output stands at, whether `Plan` takes it or not; nothing when the module does not tell.
std::optional<ToldOutput> ReadTold(const NamedOutput& output);

} // namespace kavro
