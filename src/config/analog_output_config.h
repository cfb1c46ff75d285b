#pragma once

#include "config/config_commands.h"
#include "link/messages.h"
#include "map/session.h"

#include <cstdint>
#include <string_view>

namespace kavro {

/// Settings of an analog output module, with one output or several.
struct AnalogOutputConfig {
    LinkSettings Link;
    std::int16_t OutputRange = 0;   ///< range code
    std::int16_t DataFormat = 0;    ///< data format code
    std::int16_t InputPolarity = 0; ///< 1: the digital input is inverted; 8320 only
};

/// Whether an analog output model has a digital input.
bool HasInputPolarity(std::string_view model);

/// The entry's settings; nothing is read from the module.
AnalogOutputConfig AnalogOutputConfigOf(const Session& session, int index);

/// Writes what differs from the entry: the module configuration, and tells its success at once; then the
/// polarity ("~AACP0P"), whose success is not told. Tells every failure, and keeps in the entry what the
/// module accepted. `ConfigResult` becomes 1 when the module accepted anything, 2 when it refused the module
/// configuration alone; it stays as it was when nothing was sent or the polarity alone failed.
ConfigOutcome ApplyAnalogOutputConfig(Session& session, int index, const AnalogOutputConfig& config,
                                      Messages& messages);

} // namespace kavro
