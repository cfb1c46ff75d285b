#include "config/analog_input_config.h"

#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"

namespace kavro {

namespace {

constexpr std::size_t MaskReplyLength = 5; // "!AAVV"

bool IsMaskReply(const Session& session, int index) {
    const std::string& reply = session.Line.ReplyText;
    return session.Line.ReplyIs('!') && reply.size() == MaskReplyLength &&
           NamesModule(session, index, Middle(reply, 2, 2)) && HexNumber(Middle(reply, 4));
}

bool ApplyChannels(Session& session, int index, unsigned enabled, Messages& messages) {
    const int channels = ChannelCount(session.ModuleTable[index].Model).value_or(0);
    const unsigned mask = enabled & ((1U << channels) - 1);
    return ChangeSetting(session, index, '$', "5" + ToHex(static_cast<std::int32_t>(mask), 2),
                         "Channel enable/disable configuration failed.", messages);
}

} // namespace

AnalogInputConfig ReadAnalogInputConfig(Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    AnalogInputConfig config{LinkSettingsOf(record), record.InputRange, record.DataFormat};
    const auto enabled = ReadChannelEnables(session, index, session.Line.LongReplyTimeout);
    config.EnabledChannels = enabled.value_or(0);
    config.ChannelsKnown = enabled && IsMaskReply(session, index);
    return config;
}

ConfigOutcome ApplyAnalogInputConfig(Session& session, int index, const AnalogInputConfig& config,
                                     Messages& messages) {
    session.ConfigResult = 2;
    if (!CheckAddress(session, config.Link, messages))
        return ConfigOutcome::Refused;
    const AnalogModuleConfig module{config.Link, config.InputRange, config.DataFormat};
    const bool configured = ChangeAnalogModuleConfig(session, index, module, messages) != StepResult::Failed;
    const bool enabled = ApplyChannels(session, index, config.EnabledChannels, messages);
    return EndConfig(session, configured && enabled, messages);
}

} // namespace kavro
