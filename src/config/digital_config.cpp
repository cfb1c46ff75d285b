#include "config/digital_config.h"

#include <string>

namespace kavro {

namespace {

// True when the module accepted, or when there was nothing to change; so is `ApplyPolarity`.
bool ApplyModuleConfig(Session& session, int index, const LinkSettings& link, Messages& messages) {
    if (link == LinkSettingsOf(session.ModuleTable[index]))
        return true;
    if (!ChangeDigitalModuleConfig(session, index, link, messages))
        return false;
    messages.Show(ConfigCompleteText); // before the polarity is sent, which may still fail
    return true;
}

bool ApplyPolarity(Session& session, int index, const DigitalConfig& config, Messages& messages) {
    std::int16_t& kept = session.ModuleTable[index].Digital.Polarity;
    if (config.InputPolarity == kept % 2 && config.OutputPolarity == kept / 2)
        return true;
    if (!ChangeSetting(session, index, '~',
                       "CP" + std::to_string(config.OutputPolarity) + std::to_string(config.InputPolarity),
                       "Digital I/O polarity configuration failed.", messages))
        return false;
    kept = static_cast<std::int16_t>(config.OutputPolarity * 2 + config.InputPolarity);
    return true;
}

} // namespace

DigitalConfig DigitalConfigOf(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    return {LinkSettingsOf(record), static_cast<std::int16_t>(record.Digital.Polarity % 2),
            static_cast<std::int16_t>(record.Digital.Polarity / 2)};
}

ConfigOutcome ApplyDigitalConfig(Session& session, int index, const DigitalConfig& config,
                                 Messages& messages) {
    // `ConfigResult` is not reset first; this is meant.
    if (!CheckAddress(session, config.Link, messages))
        return ConfigOutcome::Refused;
    const bool configured = ApplyModuleConfig(session, index, config.Link, messages);
    const bool inverted = ApplyPolarity(session, index, config, messages);
    return configured && inverted ? ConfigOutcome::Complete : ConfigOutcome::Incomplete;
}

} // namespace kavro
