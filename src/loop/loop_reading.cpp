#include "loop/loop_reading.h"

#include "diag/alarm_panel.h"
#include "diag/analog_input_panel.h"
#include "diag/analog_output_panel.h"
#include "diag/counter_panel.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "link/codes.h"
#include "link/models.h"
#include "link/text.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr double LeastFrequencyScale = 20; // Hz; a change of 1 Hz counts

LoopReading Level(Answer answer, bool on) {
    return {answer, on ? 1.0 : 0.0, on ? "on" : "off"};
}

bool Bit(unsigned word, int bit) {
    return (word >> bit & 1U) != 0;
}

LoopReading ReadAnalog(Session& session, int index, int channel) {
    const ModuleRecord& record = session.ModuleTable[index];
    LoopReading reading;
    if (HasOpenStatus(record.Model)) {
        const ModuleReply open = AskModule(session, index, '$', "BA");
        reading.Open = open.Answer == Answer::Ok && Bit(open.Digits(0, 2), channel);
        if (open.Answer == Answer::NoReply)
            return reading;
    }
    AnalogReading analog;
    reading.Answer = ReadInputValue(session, index, channel, analog);
    if (reading.Answer == Answer::Ok && !analog.Value)
        reading.Answer = Answer::Garbled;
    reading.Number = analog.Value.value_or(0);
    // The digits that the module tells where it tells them in this unit.
    const bool told = analog.Value && record.DataFormat == EngineeringUnits;
    const std::string number =
        told ? ShownNumber(Trim(Middle(session.Line.ReplyText, 2)), session.DecimalSeparator)
             : SignedReading(analog, session.DecimalSeparator);
    reading.Text = Trim(number + " " + Trim(RangeUnit(record.InputRange, record.DataFormat)));
    return reading;
}

LoopReading ReadCount(Session& session, int index, const LoopPoint& point) {
    std::uint32_t count = 0;
    const Answer answer = ReadCounter(session, index, point.Channel, count);
    return {answer, static_cast<double>(count),
            std::to_string(count) + (point.Kind == LoopKind::Frequency ? " Hz" : "")};
}

LoopReading ReadLevel(Session& session, int index, const LoopPoint& point) {
    switch (RowOfModel(point.Model).Kind) {
    case ModelKind::AlarmInput: {
        AlarmStates states;
        const Answer answer = ReadAlarmStates(session, index, states);
        return Level(answer, states.Input);
    }
    case ModelKind::PortOutputs: {
        const ModuleReply reply = AskModule(session, index, '$', "8");
        const unsigned word = reply.Answer == Answer::Ok ? reply.Digits(0, 2) : 0;
        return Level(reply.Answer, Bit(word, point.Channel - OutputPorts));
    }
    case ModelKind::PortLines: {
        unsigned levels = 0;
        const Answer answer = ReadPortLevels(session, index, levels);
        return Level(answer, Bit(levels, point.Channel));
    }
    default: {
        DigitalStates states;
        const Answer answer = ReadDigitalStates(session, index, states);
        return Level(answer, Bit(states.Inputs, point.Channel));
    }
    }
}

} // namespace

LoopReading ReadLoopInput(Session& session, int index, const LoopPoint& point) {
    switch (point.Kind) {
    case LoopKind::AnalogInput:
        return ReadAnalog(session, index, point.Channel);
    case LoopKind::Counter:
    case LoopKind::Frequency:
        return ReadCount(session, index, point);
    default:
        return ReadLevel(session, index, point);
    }
}

double LoopFullScale(const ModuleRecord& record, LoopKind kind, double first) {
    switch (kind) {
    case LoopKind::AnalogInput:
        return RangeFullScale(record.InputRange);
    case LoopKind::Frequency:
        return std::max(first, LeastFrequencyScale);
    default:
        return 0;
    }
}

} // namespace kavro
