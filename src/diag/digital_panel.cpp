#include "diag/digital_panel.h"

#include "link/digital_channels.h"
#include "link/text.h"

namespace kavro {

namespace {

constexpr int InputInverted = 1, OutputInverted = 2; // bits of the polarity

unsigned AllOf(int channels) {
    return (1U << channels) - 1;
}

} // namespace

Answer ReadDigitalStates(Session& session, int index, DigitalStates& states) {
    const ModuleReply reply = AskModule(session, index, '$', "6");
    if (reply.Answer == Answer::Ok) {
        const DigitalChannels channels = DigitalChannelsOf(session.ModuleTable[index].Model);
        states = {reply.Digits(0, 4) & AllOf(channels.Outputs), reply.Digits(4, 4) & AllOf(channels.Inputs)};
    }
    return reply.Answer;
}

Answer SwitchOutput(Session& session, int index, int channel, bool on) {
    return TellModule(session, index, '@', "SO" + ToHex(channel, 2) + (on ? "1" : "0"));
}

Answer SwitchAllOutputs(Session& session, int index, bool on) {
    const unsigned all = AllOf(DigitalChannelsOf(session.ModuleTable[index].Model).Outputs);
    return TellModule(session, index, '@', "DO" + ToHex(on ? static_cast<std::int32_t>(all) : 0, 4));
}

std::string PolarityText(const ModuleRecord& record) {
    const DigitalChannels channels = DigitalChannelsOf(record.Model);
    const auto side = [&](const char* name, int bit) {
        return std::string(name) + ((record.Digital.Polarity & bit) != 0 ? " inverted" : " not inverted");
    };
    if (channels.Outputs == 0)
        return side("Inputs", InputInverted);
    if (channels.Inputs == 0)
        return side("Outputs", OutputInverted);
    return side("Inputs", InputInverted) + ", " + side("outputs", OutputInverted);
}

} // namespace kavro
