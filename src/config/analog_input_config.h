#pragma once

#include "config/config_commands.h"
#include "link/messages.h"
#include "map/session.h"

#include <cstdint>
#include <optional>

namespace kavro {

/// Settings of an analog input module with several channels.
struct AnalogInputConfig {
    LinkSettings Link;
    std::int16_t InputRange = 0;  ///< range code
    std::int16_t DataFormat = 0;  ///< data format code
    unsigned EnabledChannels = 0; ///< bit n: channel n is read; bits beyond the model's channels do not count
    std::optional<unsigned> PresentChannels = {}; ///< as the module has them, to leave them alone when they
                                                  ///< do not differ; nothing: they are sent in any case
    bool ChannelsKnown = true;                    ///< false: these were asked for, and no good reply came
};

/// The entry's settings, with the enabled channels read from the module ("$AA6"): none when it does not
/// answer. A reply that is not "!AAVV" is used as far as it goes, but does not make them known.
AnalogInputConfig ReadAnalogInputConfig(Session& session, int index);

/// The same, believing what `AskModule` believes, and with `PresentChannels`. When the module does not tell
/// its channels twice alike they are not known, and the entry's `Unread` says so.
AnalogInputConfig ReadAnalogInputConfigWell(Session& session, int index);

/// Writes the settings: the module configuration when it differs from the entry, then the enabled channels
/// ("$AA5VV"). Tells every failure and the success, keeps in the entry what the module accepted, and
/// leaves `ConfigResult` 1 when it accepted anything, else 2.
ConfigOutcome ApplyAnalogInputConfig(Session& session, int index, const AnalogInputConfig& config,
                                     Messages& messages);

} // namespace kavro
