#include "diag/module_values.h"

#include "diag/digital_channels.h"
#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"

#include <array>
#include <utility>

namespace kavro {

namespace {

constexpr int OutputDecimals = 3;
constexpr double OutputCounts = 4095;

struct Reading {
    std::string Text;
    double Number = 0;
};

using MaybeReading = std::optional<Reading>;

// Selects an entry for as long as it lives: the full scale of a reading is that of the selected module.
class Selection {
public:
    Selection(Session& session, int index)
        : session_(session),
          before_(std::exchange(session.SelectedModule, static_cast<std::int16_t>(index))) {}
    ~Selection() { session_.SelectedModule = before_; }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;

private:
    Session& session_;
    std::int16_t before_;
};

// One turn on one module: sends commands for as long as they are answered, and gathers the values.
class Turn {
public:
    Turn(Session& session, int index) : session_(session), index_(index) {}

    std::vector<ChannelValue> Values;

    const ModuleRecord& Record() const { return session_.ModuleTable[index_]; }
    const std::string& Reply() const { return session_.Line.ReplyText; }

    // Sends "$AA6" for ('$', "6"). Whether a complete reply of that class came.
    bool Ask(char lead, const std::string& tail, char replyClass) {
        if (lost_)
            return false;
        ExchangeWithModule(session_, index_, lead + AddressText(session_, index_) + tail,
                           session_.Line.ReplyTimeout);
        NoteStatus();
        return session_.Line.ReplyIs(replyClass);
    }

    MaybeReading ReadInput(int channel) {
        if (lost_)
            return std::nullopt;
        const Selection selection(session_, index_);
        const AnalogReading reading = ReadAnalogInput(session_, index_, channel);
        NoteStatus();
        return reading.Value ? MaybeReading({reading.Text, *reading.Value}) : std::nullopt;
    }

    std::optional<unsigned> ReadEnables() {
        const auto enables = ReadChannelEnables(session_, index_, session_.Line.ReplyTimeout);
        NoteStatus();
        return session_.Line.ReplyIs('!') ? enables : std::nullopt; // a refusal is no mask
    }

    void Put(std::string channel, std::string unit, const MaybeReading& reading) {
        ChannelValue value{
            std::move(channel), {}, std::nullopt, std::move(unit), lost_.value_or(ValueState::Error)};
        if (reading) {
            value.Text = reading->Text;
            value.Number = reading->Number;
            value.State = ValueState::Ok;
        }
        Values.push_back(std::move(value));
    }

    std::string Unit() const { return Trim(RangeUnit(Record().InputRange, Record().DataFormat)); }

private:
    void NoteStatus() {
        if (session_.Line.ReplyStatus == 0)
            lost_ = Reply().empty() ? ValueState::NoReply : ValueState::Error;
    }

    Session& session_;
    int index_;
    std::optional<ValueState> lost_; // why nothing more is sent in this turn
};

// `digits` hexadecimal digits of a reply from the character `first` (counted from 1) on.
MaybeReading Word(const std::string& reply, std::size_t first, int digits) {
    std::string text = Middle(reply, first, static_cast<std::size_t>(digits));
    const auto number = HexNumber(text);
    return number ? MaybeReading({std::move(text), static_cast<double>(*number)}) : std::nullopt;
}

void ReadInputs(Turn& turn, std::optional<unsigned>& enables) {
    const int channels = ChannelCount(turn.Record().Model).value_or(0);
    if (channels == 1)
        enables = 1;
    if (!enables)
        enables = turn.ReadEnables();
    for (int channel = 0; channel < channels; ++channel) {
        const bool enabled = enables && (*enables >> channel & 1U) != 0;
        turn.Put(std::to_string(channel), turn.Unit(), enabled ? turn.ReadInput(channel) : std::nullopt);
        if (enables && !enabled)
            turn.Values.back().State = ValueState::Disabled;
    }
}

// The output that an 8310 reports in its data format, in the unit of its range.
MaybeReading OutputReading(const std::string& text, const ModuleRecord& record) {
    constexpr std::int16_t liveZeroRange = 49; // 4 to 20 mA
    const double low = record.InputRange == liveZeroRange ? 4 : 0;
    const double span = RangeFullScale(record.InputRange) - low;
    std::optional<double> value;
    if (record.DataFormat == TwosComplement) {
        if (const auto counts = HexNumber(text))
            value = low + *counts * span / OutputCounts;
    } else {
        value = LeadingNumber(text);
        if (value && record.DataFormat == PercentOfRange)
            value = low + *value * span / 100;
    }
    return value ? MaybeReading({FormatNumber(*value, 1, OutputDecimals), *value}) : std::nullopt;
}

void ReadOutputs(Turn& turn, std::optional<unsigned>& /*enables*/) {
    const auto readBack = [&](const std::string& port) {
        return turn.Ask('$', "6" + port, '!') ? std::optional(Middle(turn.Reply(), 4)) : std::nullopt;
    };
    if (ModelSuffix(turn.Record().Model) == "310") {
        const auto data = readBack("");
        turn.Put("0", turn.Unit(), data ? OutputReading(*data, turn.Record()) : std::nullopt);
        return;
    }
    for (const char* port : {"A", "B", "C", "D"}) {
        const auto data = readBack(port);
        const auto value = data ? LeadingNumber(*data) : std::nullopt;
        turn.Put(port, turn.Unit(),
                 value ? MaybeReading({FormatNumber(*value, 1, OutputDecimals), *value}) : std::nullopt);
    }
    constexpr std::size_t inputReplyLength = 7; // "!II0000"
    const bool good = turn.Ask('$', "8", '!') && turn.Reply().size() == inputReplyLength;
    turn.Put("IN", WordUnit, good ? Word(turn.Reply(), 2, 2) : std::nullopt);
}

void ReadPorts(Turn& turn) {
    struct Port {
        const char* Name;
        std::size_t First;
        int Digits;
    };
    constexpr Port ports[] = {{"A", 2, 2}, {"B", 4, 2}, {"CH", 6, 1}, {"CL", 7, 1}};
    constexpr std::size_t replyLength = 7; // "!PPPPPP"
    const bool good = turn.Ask('$', "8", '!') && turn.Reply().size() == replyLength;
    for (const Port& port : ports)
        turn.Put(port.Name, WordUnit, good ? Word(turn.Reply(), port.First, port.Digits) : std::nullopt);
}

void ReadDigital(Turn& turn, std::optional<unsigned>& /*enables*/) {
    const DigitalChannels channels = DigitalChannelsOf(turn.Record().Model);
    if (channels.Inputs + channels.Outputs == 0)
        return ReadPorts(turn);
    constexpr std::size_t replyLength = 9; // "!OOOOIIII"
    constexpr std::size_t outputsEnd = 6, inputsEnd = 10;
    const bool good = turn.Ask('$', "6", '!') && turn.Reply().size() == replyLength;
    const auto put = [&](const char* name, int count, std::size_t end) {
        const int digits = (count + 3) / 4;
        const std::size_t first = end - static_cast<std::size_t>(digits);
        if (count > 0)
            turn.Put(name, WordUnit, good ? Word(turn.Reply(), first, digits) : std::nullopt);
    };
    put("IN", channels.Inputs, inputsEnd);
    put("OUT", channels.Outputs, outputsEnd);
}

void ReadCounters(Turn& turn, std::optional<unsigned>& /*enables*/) {
    const char* unit = turn.Record().InputRange == FrequencyRange ? "Hz" : "";
    constexpr std::size_t replyLength = 9; // ">" and 8 digits
    for (const char* channel : {"0", "1"}) {
        const bool good = turn.Ask('#', channel, '>') && turn.Reply().size() == replyLength;
        MaybeReading reading = good ? Word(turn.Reply(), 2, 8) : std::nullopt;
        if (reading)
            reading->Text = FormatNumber(reading->Number, 1, 0);
        turn.Put(channel, unit, reading);
    }
}

void ReadNothing(Turn& /*turn*/, std::optional<unsigned>& /*enables*/) {}

using Read = void (*)(Turn& turn, std::optional<unsigned>& enables);
constexpr std::array<Read, UnknownFamily + 1> ReadOfFamily = {
    ReadDigital, ReadInputs, ReadOutputs, ReadInputs, ReadCounters, ReadNothing, ReadNothing};

} // namespace

const char* StateText(ValueState state) {
    constexpr const char* texts[] = {"ok", "error", "disabled", "no reply"};
    return texts[static_cast<std::size_t>(state)];
}

std::vector<ChannelValue> ReadModuleValues(Session& session, int index, std::optional<unsigned>& enables) {
    Turn turn(session, index);
    ReadOfFamily[static_cast<std::size_t>(ModuleFamily(turn.Record().Model))](turn, enables);
    return std::move(turn.Values);
}

} // namespace kavro
