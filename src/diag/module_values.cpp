#include "diag/module_values.h"

#include "diag/analog_output_panel.h"
#include "diag/counter_panel.h"
#include "diag/digital_channels.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"

#include <array>
#include <utility>

namespace kavro {

namespace {

struct Reading {
    std::string Text;
    double Number = 0;
};

// What one transaction brings: the readings of one or more values, in order.
using Readings = std::vector<std::optional<Reading>>;

constexpr int OutputDecimals = 3;
constexpr int DigitBits = 4; // of a hexadecimal digit

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

Reading OutputReading(double value) {
    return {FormatNumber(value, 1, OutputDecimals), value};
}

Reading WordReading(unsigned word, int channels) {
    const int digits = (channels + DigitBits - 1) / DigitBits;
    return {ToHex(static_cast<std::int32_t>(word), static_cast<std::int16_t>(digits)),
            static_cast<double>(word)};
}

Readings ReadInput(Session& session, int index, std::size_t place) {
    const Selection selection(session, index);
    const AnalogReading reading = ReadAnalogInput(session, index, static_cast<int>(place));
    if (!reading.Value)
        return {std::nullopt};
    return {Reading{reading.Text, *reading.Value}};
}

// The output that an 8310 reports in its data format, in the unit of its range.
Readings ReadSingleOutput(Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    const double low = OutputValue(record.InputRange, {0, 1});
    const double span = OutputValue(record.InputRange, {1, 1}) - low;
    if (record.DataFormat == TwosComplement) {
        const ModuleReply reply = AskModule(session, index, '$', "6", {.HexDigits = 3});
        if (reply.Answer != Answer::Ok)
            return {std::nullopt};
        return {OutputReading(low + reply.Digits(0, 3) * span / OutputCounts)};
    }
    const ModuleReply reply = AskModuleForNumber(session, index, '$', "6");
    if (reply.Answer != Answer::Ok)
        return {std::nullopt};
    const double value = NumericValue(reply.Data);
    return {OutputReading(record.DataFormat == PercentOfRange ? low + value * span / 100 : value)};
}

Readings ReadOutput(Session& session, int index, std::size_t place) {
    if (ModelSuffix(session.ModuleTable[index].Model) == "310")
        return ReadSingleOutput(session, index);
    if (place == OutputPorts) {
        const auto inputs = ReadOutputModuleInputs(session, index);
        return {inputs ? std::optional(WordReading(*inputs, OutputModuleInputs)) : std::nullopt};
    }
    const std::string port(1, static_cast<char>('A' + place));
    const ModuleReply reply = AskModuleForNumber(session, index, '$', "6" + port);
    if (reply.Answer != Answer::Ok)
        return {std::nullopt};
    return {OutputReading(NumericValue(reply.Data))};
}

Readings ReadPorts(Session& session, int index) {
    Readings readings(DigitalPorts.size());
    unsigned levels = 0;
    if (ReadPortLevels(session, index, levels) == Answer::Ok)
        for (std::size_t place = 0; place < readings.size(); ++place) {
            const DigitalPort& port = DigitalPorts[place];
            readings[place] = WordReading((levels & port.Word()) >> port.FirstLine, port.Lines);
        }
    return readings;
}

bool HasPorts(const ModuleRecord& record) {
    return ModelSuffix(record.Model) == "460";
}

Readings ReadDigital(Session& session, int index, std::size_t /*place*/) {
    const ModuleRecord& record = session.ModuleTable[index];
    if (HasPorts(record))
        return ReadPorts(session, index);
    DigitalStates states;
    const bool read = ReadDigitalStates(session, index, states) == Answer::Ok;
    const auto [inputs, outputs] = DigitalChannelsOf(record.Model);
    Readings readings;
    for (const auto& [word, channels] : {std::pair{states.Inputs, inputs}, {states.Outputs, outputs}})
        if (channels > 0)
            readings.push_back(read ? std::optional(WordReading(word, channels)) : std::nullopt);
    return readings;
}

Readings ReadCount(Session& session, int index, std::size_t place) {
    std::uint32_t count = 0;
    if (ReadCounter(session, index, static_cast<int>(place), count) != Answer::Ok)
        return {std::nullopt};
    return {Reading{FormatNumber(count, 1, 0), static_cast<double>(count)}};
}

using Names = std::vector<std::string>;

Names Numbers(int channels) {
    Names names;
    for (int channel = 0; channel < channels; ++channel)
        names.push_back(std::to_string(channel));
    return names;
}

Names InputNames(const ModuleRecord& record) {
    return Numbers(ChannelCount(record.Model).value_or(0));
}

Names OutputNames(const ModuleRecord& record) {
    return ModelSuffix(record.Model) == "310" ? Numbers(1) : Names{"A", "B", "C", "D", "IN"};
}

Names DigitalNames(const ModuleRecord& record) {
    Names names;
    if (HasPorts(record))
        for (const DigitalPort& port : DigitalPorts)
            names.emplace_back(port.Name);
    const auto [inputs, outputs] = DigitalChannelsOf(record.Model);
    if (inputs > 0)
        names.emplace_back("IN");
    if (outputs > 0)
        names.emplace_back("OUT");
    return names;
}

Names CounterNames(const ModuleRecord& /*record*/) {
    return Numbers(CounterTotal);
}

Names NoNames(const ModuleRecord& /*record*/) {
    return {};
}

// How the values of a family are named and read.
struct FamilyValues {
    Names (*Channels)(const ModuleRecord& record);
    Readings (*Read)(Session& session, int index, std::size_t place);
};

constexpr std::array<FamilyValues, UnknownFamily + 1> Families = {{{DigitalNames, ReadDigital},
                                                                   {InputNames, ReadInput},
                                                                   {OutputNames, ReadOutput},
                                                                   {InputNames, ReadInput},
                                                                   {CounterNames, ReadCount},
                                                                   {NoNames, nullptr},
                                                                   {NoNames, nullptr}}};

const FamilyValues& ValuesOf(const ModuleRecord& record) {
    return Families[static_cast<std::size_t>(ModuleFamily(record.Model))];
}

std::string UnitOf(const ModuleRecord& record, const std::string& channel) {
    const std::int16_t family = ModuleFamily(record.Model);
    if (family == DigitalIo || channel == "IN")
        return WordUnit;
    if (family == CounterFrequency)
        return record.InputRange == FrequencyRange ? "Hz" : "";
    return Trim(RangeUnit(record.InputRange, record.DataFormat));
}

} // namespace

const char* StateText(ValueState state) {
    constexpr const char* texts[] = {"ok", "error", "disabled", "no reply"};
    return texts[static_cast<std::size_t>(state)];
}

ModuleReader::ModuleReader(Session& session, int index, std::optional<unsigned>& enables)
    : session_(session), index_(index), enables_(enables) {
    const ModuleRecord& record = session.ModuleTable[index];
    for (std::string& channel : ValuesOf(record).Channels(record)) {
        std::string unit = UnitOf(record, channel);
        Values.push_back({std::move(channel), {}, std::nullopt, std::move(unit), ValueState::NoReply});
    }
    askEnables_ = ModuleFamily(record.Model) == MultiAnalogInput && !enables;
    SkipDisabled();
}

void ModuleReader::Step() {
    if (!(askEnables_ ? AskEnables() : TakeReadings()))
        GiveUp();
    SkipDisabled();
}

bool ModuleReader::AskEnables() {
    askEnables_ = false;
    const auto enables = ReadChannelEnables(session_, index_, session_.Line.ReplyTimeout);
    if (session_.Line.ReplyIs('!')) // a refusal is no mask
        enables_ = enables;
    return enables_.has_value();
}

bool ModuleReader::TakeReadings() {
    const Readings readings = ValuesOf(session_.ModuleTable[index_]).Read(session_, index_, next_);
    if (session_.Line.ReplyStatus == 0)
        return false;
    for (const auto& reading : readings) {
        ChannelValue& value = Values[next_++];
        value.State = reading ? ValueState::Ok : ValueState::Error;
        if (reading) {
            value.Text = reading->Text;
            value.Number = reading->Number;
        }
    }
    return true;
}

void ModuleReader::SkipDisabled() {
    while (enables_ && !Done() && (*enables_ >> next_ & 1U) == 0)
        Values[next_++].State = ValueState::Disabled;
}

void ModuleReader::GiveUp() {
    const bool silent = session_.Line.ReplyStatus == 0 && session_.Line.ReplyText.empty();
    for (SkipDisabled(); !Done(); SkipDisabled())
        Values[next_++].State = silent ? ValueState::NoReply : ValueState::Error;
}

std::vector<ChannelValue> ReadModuleValues(Session& session, int index, std::optional<unsigned>& enables) {
    ModuleReader reader(session, index, enables);
    while (!reader.Done())
        reader.Step();
    return std::move(reader.Values);
}

} // namespace kavro
