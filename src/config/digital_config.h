#pragma once

#include "config/config_commands.h"
#include "link/messages.h"
#include "map/session.h"

#include <cstdint>

namespace kavro {

/// Settings of a digital I/O module (`ModelKind::DigitalLines`).
struct DigitalConfig {
    LinkSettings Link;
    std::int16_t InputPolarity = 0;  ///< 1: inputs are inverted
    std::int16_t OutputPolarity = 0; ///< 1: outputs are inverted
};

/// The entry's settings; nothing is read from the module.
DigitalConfig DigitalConfigOf(const Session& session, int index);

/// Writes what differs from the entry: the module configuration, and tells its success at once; then the
/// polarity ("~AACPOI"), whose success is not told. Tells every failure, and keeps in the entry what the
/// module accepted. `ConfigResult` becomes 1 when the module accepted anything, 2 when it refused the module
/// configuration alone; it stays as it was when nothing was sent or the polarity alone failed.
ConfigOutcome ApplyDigitalConfig(Session& session, int index, const DigitalConfig& config,
                                 Messages& messages);

} // namespace kavro
