#include "monitor/module_values.h"

#include "diag/analog_input_panel.h"
#include "diag/analog_output_panel.h"
#include "diag/counter_panel.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "link/codes.h"
#include "link/digital_channels.h"
#include "link/models.h"
#include "link/text.h"
#include "map/module_command.h"

#include <array>
#include <utility>

namespace kavro {

namespace {

struct Reading {
    std::string Text;
    double Number = 0;
};

// What an exchange brings: the readings of one or more values, in order; none unless the answer is `Ok`.
struct Readings {
    kavro::Answer Answer = kavro::Answer::NoReply;
    std::vector<Reading> Values = {};
};

constexpr int OutputDecimals = 3;
constexpr int DigitBits = 4; // of a hexadecimal digit

Reading OutputReading(double value) {
    return {FormatNumber(value, 1, OutputDecimals), value};
}

Reading WordReading(unsigned word, int channels) {
    const int digits = (channels + DigitBits - 1) / DigitBits;
    return {ToHex(static_cast<std::int32_t>(word), static_cast<std::int16_t>(digits)),
            static_cast<double>(word)};
}

Readings ReadInput(Session& session, int index, std::size_t place) {
    AnalogReading reading;
    const Answer answer = ReadInputValue(session, index, static_cast<int>(place), reading);
    if (answer != Answer::Ok)
        return {answer};
    return {answer, {{reading.Text, reading.Value.value_or(0)}}};
}

// The output that a model with one reports in its data format, in the unit of its range.
double SingleOutputValue(const ModuleRecord& record, const ModuleReply& reply) {
    const double low = OutputValue(record.InputRange, {0, 1});
    const double span = OutputValue(record.InputRange, {1, 1}) - low;
    if (record.DataFormat == TwosComplement)
        return low + reply.Digits(0, 3) * span / OutputCounts;
    const double value = NumericValue(reply.Data);
    return record.DataFormat == PercentOfRange ? low + value * span / 100 : value;
}

Readings ReadOutput(Session& session, int index, std::size_t place) {
    const ModuleRecord& record = session.ModuleTable[index];
    const bool single = RowOfModel(record.Model).Kind == ModelKind::SingleOutput;
    const bool inputs = !single && place == OutputPorts;
    const std::string port = single ? "" : std::string(1, static_cast<char>('A' + place));
    const ModuleReply reply = AskModule(session, index, '$', inputs ? "8" : "6" + port);
    if (reply.Answer != Answer::Ok)
        return {reply.Answer};
    if (inputs)
        return {reply.Answer, {WordReading(reply.Digits(0, 2) & AllModuleInputs, OutputModuleInputs)}};
    return {reply.Answer,
            {OutputReading(single ? SingleOutputValue(record, reply) : NumericValue(reply.Data))}};
}

Readings ReadPorts(Session& session, int index) {
    unsigned levels = 0;
    Readings readings{ReadPortLevels(session, index, levels)};
    if (readings.Answer == Answer::Ok)
        for (const DigitalPort& port : DigitalPorts)
            readings.Values.push_back(WordReading((levels & port.Word()) >> port.FirstLine, port.Lines));
    return readings;
}

bool HasPorts(const ModuleRecord& record) {
    return RowOfModel(record.Model).Kind == ModelKind::PortLines;
}

Readings ReadDigital(Session& session, int index, std::size_t /*place*/) {
    const ModuleRecord& record = session.ModuleTable[index];
    if (HasPorts(record))
        return ReadPorts(session, index);
    DigitalStates states;
    Readings readings{ReadDigitalStates(session, index, states)};
    const auto [inputs, outputs] = DigitalChannelsOf(record.Model);
    if (readings.Answer == Answer::Ok)
        for (const auto& [word, channels] : {std::pair{states.Inputs, inputs}, {states.Outputs, outputs}})
            if (channels > 0)
                readings.Values.push_back(WordReading(word, channels));
    return readings;
}

Readings ReadCount(Session& session, int index, std::size_t place) {
    std::uint32_t count = 0;
    const Answer answer = ReadCounter(session, index, static_cast<int>(place), count);
    if (answer != Answer::Ok)
        return {answer};
    return {answer, {{FormatNumber(count, 1, 0), static_cast<double>(count)}}};
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
    const bool single = RowOfModel(record.Model).Kind == ModelKind::SingleOutput;
    return single ? Numbers(1) : Names{"A", "B", "C", "D", "IN"};
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

// Whether one exchange brings every value.
bool ReadsAllAtOnce(const ModuleRecord& record) {
    return ModuleFamily(record.Model) == DigitalIo;
}

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
    constexpr const char* texts[] = {"ok", "error", "disabled", "no reply", "open", "line lost"};
    return texts[static_cast<std::size_t>(state)];
}

TagAndNote TagOfValue(const Session& session, int index, const ChannelValue& value) {
    if (value.Unit == WordUnit || value.Channel.size() != 1)
        return {};
    const char name = value.Channel.front(); // outputs have letters
    return ChannelTagOf(session, index, name >= 'A' ? name - 'A' : name - '0');
}

ModuleReader::ModuleReader(Session& session, int index, std::optional<unsigned>& enables)
    : session_(session), index_(index), enables_(enables) {
    const ModuleRecord& record = session.ModuleTable[index];
    for (std::string& channel : ValuesOf(record).Channels(record)) {
        std::string unit = UnitOf(record, channel);
        Values.push_back({std::move(channel), {}, std::nullopt, std::move(unit), ValueState::NoReply});
    }
    askEnables_ = ModuleFamily(record.Model) == MultiAnalogInput && !enables;
    askOpen_ = HasOpenStatus(record.Model);
    SkipUnread();
}

void ModuleReader::Step() {
    if (askEnables_)
        AskEnables();
    else if (askOpen_)
        AskOpen();
    else
        TakeReadings();
    SkipUnread();
}

// Kept for a long time, so a single digit that is wrong must not pass.
void ModuleReader::AskEnables() {
    askEnables_ = false;
    const ModuleReply reply = AskModuleTwice(session_, index_, '$', "6");
    if (reply.Answer == Answer::Ok)
        enables_ = reply.Digits(0, 2);
    else
        GiveUp(reply.Answer);
}

// A module that refuses to tell has no such sensors.
void ModuleReader::AskOpen() {
    askOpen_ = false;
    const ModuleReply reply = AskModule(session_, index_, '$', "BA");
    if (reply.Answer == Answer::Ok)
        open_ = reply.Digits(0, 2);
    else if (reply.Answer != Answer::Refused)
        GiveUp(reply.Answer);
}

void ModuleReader::TakeReadings() {
    const Readings readings = ValuesOf(session_.ModuleTable[index_]).Read(session_, index_, next_);
    if (readings.Answer != Answer::Ok) {
        if (session_.Line.ReplyStatus == 0)
            return GiveUp(readings.Answer);
        const std::size_t end = ReadsAllAtOnce(session_.ModuleTable[index_]) ? Values.size() : next_ + 1;
        while (next_ < end)
            Values[next_++].State = ValueState::Error;
        return;
    }
    for (const Reading& reading : readings.Values) {
        ChannelValue& value = Values[next_++];
        value.State = ValueState::Ok;
        value.Text = reading.Text;
        value.Number = reading.Number;
    }
}

void ModuleReader::SkipUnread() {
    for (; !Done() && !askEnables_ && !askOpen_; ++next_) {
        if (enables_ && (*enables_ >> next_ & 1U) == 0)
            Values[next_].State = ValueState::Disabled;
        else if ((open_ >> next_ & 1U) != 0)
            Values[next_].State = ValueState::Open;
        else
            break;
    }
}

// What is left has the state that this answer means, but for channels that are known to be switched off.
void ModuleReader::GiveUp(Answer answer) {
    askEnables_ = askOpen_ = false;
    for (SkipUnread(); !Done(); SkipUnread())
        Values[next_++].State = answer == Answer::NoReply ? ValueState::NoReply : ValueState::Error;
}

std::vector<ChannelValue> ReadModuleValues(Session& session, int index, std::optional<unsigned>& enables) {
    ModuleReader reader(session, index, enables);
    while (!reader.Done())
        reader.Step();
    return std::move(reader.Values);
}

} // namespace kavro
