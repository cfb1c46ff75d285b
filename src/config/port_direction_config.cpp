#include "config/port_direction_config.h"

#include "link/text.h"
#include "map/module_access.h"
#include "map/module_command.h"

namespace kavro {

namespace {

constexpr unsigned AllPorts = 0x0F;

} // namespace

PortDirectionConfig ReadPortDirectionConfig(Session& session, int index) {
    const bool answered = ExchangeWithModule(session, index, "$" + AddressText(session, index) + "6",
                                             session.Line.ReplyTimeout);
    const std::string& reply = session.Line.ReplyText;
    const auto mask = answered ? HexNumber(Middle(reply, 2, 2)) : std::nullopt;
    return {LinkSettingsOf(session.ModuleTable[index]), mask.value_or(AllPorts) & AllPorts, std::nullopt,
            LastAnswer(session, index, '$', "6") == Answer::Ok};
}

PortDirectionConfig ReadPortDirectionConfigWell(Session& session, int index) {
    const ModuleReply reply = AskModuleTwice(session, index, '$', "6");
    ModuleRecord& record = session.ModuleTable[index];
    PortDirectionConfig config{LinkSettingsOf(record), AllPorts, std::nullopt, reply.Answer == Answer::Ok};
    if (reply.Answer == Answer::Ok)
        config.PresentInputs = config.InputPorts = reply.Digits(0, 2);
    else
        record.Unread.emplace_back("$6");
    return config;
}

ConfigOutcome ApplyPortDirectionConfig(Session& session, int index, const PortDirectionConfig& config,
                                       Messages& messages) {
    // `ConfigResult` is not reset first; this is meant.
    if (!CheckAddress(session, config.Link, messages))
        return ConfigOutcome::Refused;
    const bool configured =
        ChangeDigitalModuleConfig(session, index, config.Link, messages) != StepResult::Failed;
    const auto mask = static_cast<std::int32_t>(config.InputPorts & AllPorts);
    const bool directed = config.InputPorts == config.PresentInputs ||
                          ChangeSetting(session, index, '$', "S" + ToHex(mask, 2),
                                        "Port input/output configuration failed.", messages);
    return EndConfig(session, configured && directed, messages);
}

} // namespace kavro
