#include "diag/counter_panel.h"

namespace kavro {

namespace {

// The first two digits of a reply, each 0 or 1.
CounterFlags FlagsIn(const ModuleReply& reply) {
    return {reply.Digits(0, 1) == 1, reply.Digits(1, 1) == 1};
}

Answer ReadFlags(Session& session, int index, const char* tail, CounterFlags& flags) {
    const ModuleReply reply = AskModule(session, index, '$', tail);
    if (reply.Answer == Answer::Ok)
        flags = FlagsIn(reply);
    return reply.Answer;
}

} // namespace

Answer ReadCounter(Session& session, int index, int counter, std::uint32_t& value) {
    const ModuleReply reply = AskModule(session, index, '#', std::to_string(counter));
    if (reply.Answer == Answer::Ok)
        value = reply.Digits(0, 8);
    return reply.Answer;
}

Answer ReadCounterStarted(Session& session, int index, CounterFlags& started) {
    return ReadFlags(session, index, "5", started);
}

Answer ReadCounterOverflow(Session& session, int index, CounterFlags& overflow) {
    return ReadFlags(session, index, "7", overflow);
}

Answer ReadCounterAlarms(Session& session, int index, CounterAlarms& alarms) {
    const ModuleReply reply = AskModule(session, index, '@', "DI");
    if (reply.Answer != Answer::Ok)
        return reply.Answer;
    const unsigned active = reply.Digits(2, 2);
    alarms.Enabled = FlagsIn(reply);
    alarms.Active = {(active & 1U) != 0, (active & 2U) != 0};
    return Answer::Ok;
}

Answer StartCounter(Session& session, int index, int counter, bool start) {
    return TellModule(session, index, '$', "5" + std::to_string(counter) + (start ? "1" : "0"));
}

Answer ClearCounter(Session& session, int index, int counter) {
    return TellModule(session, index, '$', "6" + std::to_string(counter));
}

} // namespace kavro
