#include "diag/alarm_panel.h"

#include "link/codes.h"
#include "link/text.h"

#include <array>

namespace kavro {

namespace {

constexpr unsigned AllOutputs = (1U << AlarmOutputTotal) - 1;

Answer TakeStates(const ModuleReply& reply, AlarmStates& states) {
    if (reply.Answer == Answer::Ok)
        states = {static_cast<std::int16_t>(reply.Digits(0, 1)), reply.Digits(1, 2) & AllOutputs,
                  (reply.Digits(3, 2) & 1U) != 0};
    return reply.Answer;
}

} // namespace

Answer ReadAlarmStates(Session& session, int index, AlarmStates& states) {
    return TakeStates(AskModule(session, index, '@', "DI"), states);
}

Answer ReadAlarmLimit(Session& session, int index, bool high, std::string& text) {
    const ModuleReply reply = AskModule(session, index, '@', high ? "RH" : "RL");
    if (reply.Answer == Answer::Ok) {
        // Limits are in engineering units whatever the data format is.
        const std::int16_t range = session.ModuleTable[index].InputRange;
        text = Trim(FormatReading(reply.Data, range) + " " + RangeUnit(range, EngineeringUnits));
    }
    return reply.Answer;
}

Answer SwitchAlarmOutput(Session& session, int index, int output, bool on) {
    AlarmStates states;
    // The other output is written back as it is read.
    const Answer read = TakeStates(AskModuleTwice(session, index, '@', "DI"), states);
    if (read != Answer::Ok)
        return read;
    const unsigned bit = 1U << output;
    const unsigned outputs = on ? states.Outputs | bit : states.Outputs & ~bit;
    return TellModule(session, index, '@', "DO" + ToHex(static_cast<std::int32_t>(outputs), 2));
}

Answer ClearAlarms(Session& session, int index) {
    return TellModule(session, index, '@', "CA");
}

std::string ActiveAlarmsText(const AlarmStates& states) {
    constexpr std::array texts = {"None", "Low", "High", "Low and high"};
    return states.Mode == AlarmDisabled ? "-" : texts[states.Outputs & AllOutputs];
}

} // namespace kavro
