#include "diag/port_panel.h"

#include "link/text.h"

namespace kavro {

namespace {

Answer TakeLevels(const ModuleReply& reply, unsigned& levels) {
    if (reply.Answer == Answer::Ok)
        levels = reply.Digits(0, 6);
    return reply.Answer;
}

} // namespace

Answer ReadPortDirections(Session& session, int index, unsigned& directions) {
    const ModuleReply reply = AskModuleTwice(session, index, '$', "6"); // asked once and kept
    if (reply.Answer == Answer::Ok)
        directions = reply.Digits(0, 2);
    return reply.Answer;
}

Answer ReadPortLevels(Session& session, int index, unsigned& levels) {
    return TakeLevels(AskModule(session, index, '$', "8"), levels);
}

Answer SwitchPortLines(Session& session, int index, unsigned lines, bool on) {
    unsigned levels = 0;
    // The other lines are written back as they are read.
    const Answer read = TakeLevels(AskModuleTwice(session, index, '$', "8"), levels);
    if (read != Answer::Ok)
        return read;
    const unsigned word = on ? levels | lines : levels & ~lines;
    return TellModule(session, index, '@', "DO" + ToHex(static_cast<std::int32_t>(word), 6));
}

} // namespace kavro
