#include "config/analog_output_config.h"

#include "link/models.h"

#include <string>

namespace kavro {

namespace {

// True when the module accepted, or when there was nothing to change.
bool ApplyPolarity(Session& session, int index, std::int16_t polarity, Messages& messages) {
    ModuleRecord& record = session.ModuleTable[index];
    if (!HasInputPolarity(record.Model) || polarity == record.Digital.Polarity % 2)
        return true;
    if (!ChangeSetting(session, index, '~', "CP0" + std::to_string(polarity),
                       "Digital input polarity configuration failed.", messages))
        return false;
    record.Digital.Polarity = polarity;
    return true;
}

} // namespace

bool HasInputPolarity(std::string_view model) {
    return RowOfModel(model).Kind == ModelKind::PortOutputs;
}

AnalogOutputConfig AnalogOutputConfigOf(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    return {LinkSettingsOf(record), record.InputRange, record.DataFormat,
            static_cast<std::int16_t>(record.Digital.Polarity % 2)};
}

ConfigOutcome ApplyAnalogOutputConfig(Session& session, int index, const AnalogOutputConfig& config,
                                      Messages& messages) {
    // `ConfigResult` is not reset first; this is meant.
    if (!CheckAddress(session, config.Link, messages))
        return ConfigOutcome::Refused;
    const AnalogModuleConfig module{config.Link, config.OutputRange, config.DataFormat};
    const StepResult configured = ChangeAnalogModuleConfig(session, index, module, messages);
    if (configured == StepResult::Accepted)
        messages.Show(ConfigCompleteText); // before the polarity is sent, which may still fail
    const bool inverted = ApplyPolarity(session, index, config.InputPolarity, messages);
    return OutcomeOf(configured != StepResult::Failed && inverted);
}

} // namespace kavro
