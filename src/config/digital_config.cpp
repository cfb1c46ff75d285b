#include "config/digital_config.h"

#include <string>

namespace kavro {

namespace {

// True when the module accepted, or when there was nothing to change.
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
    const StepResult configured = ChangeDigitalModuleConfig(session, index, config.Link, messages);
    if (configured == StepResult::Accepted)
        messages.Show(ConfigCompleteText); // before the polarity is sent, which may still fail
    const bool inverted = ApplyPolarity(session, index, config, messages);
    return OutcomeOf(configured != StepResult::Failed && inverted);
}

} // namespace kavro
