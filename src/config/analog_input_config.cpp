#include "config/analog_input_config.h"

#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"

namespace kavro {

namespace {

// True when the module accepted, or when there was nothing to change.
bool ApplyModuleConfig(Session& session, int index, const AnalogInputSettings& settings, Messages& messages) {
    ModuleRecord& record = session.ModuleTable[index];
    if (settings.Link == LinkSettingsOf(record) && settings.InputRange == record.InputRange &&
        settings.DataFormat == record.DataFormat)
        return true;
    if (!ChangeModuleConfig(session, index, settings.Link, settings.InputRange,
                            FormatByte(settings.Link, settings.DataFormat), messages))
        return false;
    record.InputRange = settings.InputRange;
    record.DataFormat = settings.DataFormat;
    return true;
}

bool ApplyChannels(Session& session, int index, unsigned enabled, Messages& messages) {
    const int channels = ChannelCount(session.ModuleTable[index].Model).value_or(0);
    const unsigned mask = enabled & ((1U << channels) - 1);
    return ChangeSetting(session, index, '$', "5" + ToHex(static_cast<std::int32_t>(mask), 2),
                         "Channel enable/disable configuration failed.", messages);
}

} // namespace

AnalogInputSettings ReadAnalogInputSettings(Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    AnalogInputSettings settings{LinkSettingsOf(record), record.InputRange, record.DataFormat};
    settings.EnabledChannels = ReadChannelEnables(session, index, session.Line.LongReplyTimeout).value_or(0);
    return settings;
}

ConfigOutcome ApplyAnalogInputSettings(Session& session, int index, const AnalogInputSettings& settings,
                                       Messages& messages) {
    session.ConfigResult = 2;
    if (!CheckAddress(session, settings.Link, messages))
        return ConfigOutcome::Refused;
    const bool configured = ApplyModuleConfig(session, index, settings, messages);
    const bool enabled = ApplyChannels(session, index, settings.EnabledChannels, messages);
    // Said after the error as well when only one of the two commands failed; this is meant.
    if (session.ConfigResult == 1)
        messages.Show(ConfigCompleteText);
    return configured && enabled ? ConfigOutcome::Complete : ConfigOutcome::Incomplete;
}

} // namespace kavro
