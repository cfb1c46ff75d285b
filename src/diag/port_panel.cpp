#include "diag/port_panel.h"

#include "link/text.h"

namespace kavro {

namespace {

constexpr unsigned AllDirections = 0x0F;

} // namespace

Answer ReadPortDirections(Session& session, int index, unsigned& directions) {
    const ModuleReply reply =
        AskModule(session, index, '$', "6", {.Class = '!', .Addressed = false, .HexDigits = 4});
    if (reply.Answer != Answer::Ok)
        return reply.Answer;
    if (reply.Digits(0, 2) > AllDirections || reply.Digits(2, 2) != 0)
        return Answer::Garbled;
    directions = reply.Digits(0, 2);
    return Answer::Ok;
}

Answer ReadPortLevels(Session& session, int index, unsigned& levels) {
    const ModuleReply reply =
        AskModule(session, index, '$', "8", {.Class = '!', .Addressed = false, .HexDigits = 6});
    if (reply.Answer == Answer::Ok)
        levels = reply.Digits(0, 6);
    return reply.Answer;
}

Answer SwitchPortLines(Session& session, int index, unsigned lines, bool on) {
    unsigned levels = 0;
    if (const Answer read = ReadPortLevels(session, index, levels); read != Answer::Ok)
        return read;
    const unsigned word = on ? levels | lines : levels & ~lines;
    return TellModule(session, index, '@', "DO" + ToHex(static_cast<std::int32_t>(word), 6));
}

} // namespace kavro
