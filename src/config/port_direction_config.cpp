#include "config/port_direction_config.h"

#include "link/text.h"
#include "map/module_access.h"

namespace kavro {

namespace {

constexpr unsigned AllPorts = 0x0F;

constexpr std::size_t DirectionReplyLength = 5; // "!MM00": the reply has no address in it

} // namespace

PortDirectionConfig ReadPortDirectionConfig(Session& session, int index) {
    const bool answered = ExchangeWithModule(session, index, "$" + AddressText(session, index) + "6",
                                             session.Line.ReplyTimeout);
    const std::string& reply = session.Line.ReplyText;
    const auto mask = answered ? HexNumber(Middle(reply, 2, 2)) : std::nullopt;
    const bool known = mask && *mask <= AllPorts && session.Line.ReplyIs('!') &&
                       reply.size() == DirectionReplyLength && Middle(reply, 4) == "00";
    return {LinkSettingsOf(session.ModuleTable[index]), mask.value_or(AllPorts) & AllPorts, known};
}

ConfigOutcome ApplyPortDirectionConfig(Session& session, int index, const PortDirectionConfig& config,
                                       Messages& messages) {
    // `ConfigResult` is not reset first; this is meant.
    if (!CheckAddress(session, config.Link, messages))
        return ConfigOutcome::Refused;
    const bool configured =
        ChangeDigitalModuleConfig(session, index, config.Link, messages) != StepResult::Failed;
    const auto mask = static_cast<std::int32_t>(config.InputPorts & AllPorts);
    const bool directed = ChangeSetting(session, index, '$', "S" + ToHex(mask, 2),
                                        "Port input/output configuration failed.", messages);
    return EndConfig(session, configured && directed, messages);
}

} // namespace kavro
