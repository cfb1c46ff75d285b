#pragma once

#include "config/config_commands.h"
#include "link/messages.h"
#include "map/session.h"

#include <optional>

namespace kavro {

/// Settings of the digital I/O module with four ports: 8460.
struct PortDirectionConfig {
    LinkSettings Link;
    unsigned InputPorts = 0; ///< bit 3 port A, 2 B, 1 CH, 0 CL; 1: the port is an input, 0: an output
    std::optional<unsigned> PresentInputs = {}; ///< as the module has them, to leave them alone when they do
                                                ///< not differ; nothing: they are sent in any case
    bool PortsKnown = true; ///< false: the directions were asked for, and no good reply came
};

/// The entry's settings, with the directions read from the module ("$AA6"): all inputs, which drive nothing,
/// when it does not answer. Only here the short time-out holds. The reply's first character is not tested,
/// but a reply that is not "!MM00" does not make them known.
PortDirectionConfig ReadPortDirectionConfig(Session& session, int index);

/// The same, believing what `AskModule` believes, and with `PresentInputs`. When the module does not tell its
/// directions twice alike they are not known, and the entry's `Unread` says so.
PortDirectionConfig ReadPortDirectionConfigWell(Session& session, int index);

/// Writes the module configuration when it differs from the entry, then the directions ("$AASMM").
/// Tells every failure, and keeps in the entry what the module accepted. `ConfigResult` becomes 1 when the
/// module accepted anything, 2 when it refused both; a 1 from before stays when the directions alone were
/// sent and refused. At the end a 1 is told as a success, wherever it comes from.
ConfigOutcome ApplyPortDirectionConfig(Session& session, int index, const PortDirectionConfig& config,
                                       Messages& messages);

} // namespace kavro
