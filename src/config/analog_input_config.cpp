#include "config/analog_input_config.h"

#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"
#include "map/module_command.h"

namespace kavro {

namespace {

unsigned AllChannels(const ModuleRecord& record) {
    return (1U << ChannelCount(record.Model).value_or(0)) - 1;
}

bool ApplyChannels(Session& session, int index, const AnalogInputConfig& config, Messages& messages) {
    const unsigned mask = config.EnabledChannels & AllChannels(session.ModuleTable[index]);
    if (mask == config.PresentChannels)
        return true;
    return ChangeSetting(session, index, '$', "5" + ToHex(static_cast<std::int32_t>(mask), 2),
                         "Channel enable/disable configuration failed.", messages);
}

} // namespace

AnalogInputConfig ReadAnalogInputConfig(Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    AnalogInputConfig config{LinkSettingsOf(record), record.InputRange, record.DataFormat};
    const auto enabled = ReadChannelEnables(session, index, session.Line.LongReplyTimeout);
    config.EnabledChannels = enabled.value_or(0);
    config.ChannelsKnown = enabled && LastAnswer(session, index, '$', "6") == Answer::Ok;
    return config;
}

AnalogInputConfig ReadAnalogInputConfigWell(Session& session, int index) {
    const ModuleReply reply = AskModuleTwice(session, index, '$', "6");
    ModuleRecord& record = session.ModuleTable[index];
    AnalogInputConfig config{LinkSettingsOf(record), record.InputRange, record.DataFormat};
    config.ChannelsKnown = reply.Answer == Answer::Ok;
    if (config.ChannelsKnown)
        config.PresentChannels = config.EnabledChannels = reply.Digits(0, 2) & AllChannels(record);
    else
        record.Unread.emplace_back("$6");
    return config;
}

ConfigOutcome ApplyAnalogInputConfig(Session& session, int index, const AnalogInputConfig& config,
                                     Messages& messages) {
    session.ConfigResult = 2;
    if (!CheckAddress(session, config.Link, messages))
        return ConfigOutcome::Refused;
    const AnalogModuleConfig module{config.Link, config.InputRange, config.DataFormat};
    const bool configured = ChangeAnalogModuleConfig(session, index, module, messages) != StepResult::Failed;
    const bool enabled = ApplyChannels(session, index, config, messages);
    return EndConfig(session, configured && enabled, messages);
}

} // namespace kavro
