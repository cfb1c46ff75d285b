#include "map/family_reads.h"

#include "link/codes.h"
#include "link/models.h"
#include "link/text.h"
#include "map/command_forms.h"

#include <cmath>
#include <limits>
#include <span>

namespace kavro {

namespace {

// One read: the command is `Lead` + address + `Code`; `Store` gets the whole reply.
struct FamilyRead {
    char Lead;
    const char* Code;
    void (*Store)(ModuleRecord& record, const std::string& reply);
};

// Replies carry their data from the 4th character on, behind "!" and the address.
constexpr std::size_t DataStart = 4;

std::int16_t DigitAt(const std::string& reply, std::size_t position) {
    return HexDigitValue(Middle(reply, position, 1));
}

double DataNumber(const std::string& reply) {
    return NumericValue(Middle(reply, DataStart));
}

void StoreLimit(const std::string& reply, float& limit) {
    const double value = DataNumber(reply);
    if (std::fabs(value) <= std::numeric_limits<float>::max())
        limit = static_cast<float>(value);
}

void StoreInt16(const std::string& reply, std::int16_t& field) {
    const double value = DataNumber(reply);
    if (std::fabs(value) <= std::numeric_limits<std::int16_t>::max())
        field = static_cast<std::int16_t>(value);
}

// A 32-bit value of 8 hexadecimal digits.
void StoreCount(const std::string& reply, std::size_t position, double& field) {
    if (const auto value = HexNumber(Middle(reply, position, 8)))
        field = *value;
}

void StorePair(const std::string& reply, std::array<double, 2>& fields) {
    StoreCount(reply, DataStart, fields[0]);
    StoreCount(reply, DataStart + 8, fields[1]);
}

void StoreDigitPair(const std::string& reply, std::array<std::int16_t, 2>& fields) {
    fields = {DigitAt(reply, DataStart), DigitAt(reply, DataStart + 1)};
}

void StorePolarity(ModuleRecord& record, const std::string& reply) {
    record.Digital.Polarity =
        static_cast<std::int16_t>(2 * DigitAt(reply, DataStart) + DigitAt(reply, DataStart + 1));
}

void StoreAlarm(ModuleRecord& record, const std::string& reply) {
    record.AlarmMode = DigitAt(reply, DataStart);
    // Digits alone: an "E" among the hexadecimal ones is no exponent.
    const std::string data = Middle(reply, DataStart);
    const double state = NumericValue(data.substr(0, data.find_first_not_of("0123456789")));
    if (state <= std::numeric_limits<std::int32_t>::max())
        record.AlarmInput.AlarmState = static_cast<std::int32_t>(state);
}

void StoreCodeSetting(ModuleRecord& record, const std::string& reply) {
    if (const auto value = HexNumber(Middle(reply, DataStart, 2)))
        record.AlarmInput.CodeSetting = static_cast<std::int16_t>(*value);
}

using Record = ModuleRecord;
using Reply = std::string;

constexpr FamilyRead PolarityReads[] = {{'~', "CR", StorePolarity}};

constexpr FamilyRead AlarmReads[] = {
    {'@', "RL", [](Record& record, const Reply& reply) { StoreLimit(reply, record.LowAlarm); }},
    {'@', "RH", [](Record& record, const Reply& reply) { StoreLimit(reply, record.HighAlarm); }},
    {'@', "DI", StoreAlarm},
};

constexpr FamilyRead Suffix240Reads[] = {
    {'$', "3",
     [](Record& record, const Reply& reply) { StoreLimit(reply, record.AlarmInput.SignedSetting); }},
    {'$', "5", StoreCodeSetting},
};

constexpr FamilyRead CounterReads[] = {
    {'$', "B",
     [](Record& record, const Reply& reply) { record.Counter.InputMode = DigitAt(reply, DataStart); }},
    {'$', "A",
     [](Record& record, const Reply& reply) { record.Counter.GateMode = DigitAt(reply, DataStart); }},
    {'$', "5",
     [](Record& record, const Reply& reply) { StoreDigitPair(reply, record.Counter.CounterStatus); }},
    {'$', "3",
     [](Record& record, const Reply& reply) { StoreCount(reply, DataStart, record.Counter.MaxValue[0]); }},
    {'@', "G",
     [](Record& record, const Reply& reply) { StoreCount(reply, DataStart, record.Counter.MaxValue[1]); }},
    {'$', "4",
     [](Record& record, const Reply& reply) { record.Counter.DigitalFilter = DigitAt(reply, DataStart); }},
    {'$', "0H", [](Record& record, const Reply& reply) { StoreInt16(reply, record.Counter.MinAtHigh); }},
    {'$', "0L", [](Record& record, const Reply& reply) { StoreInt16(reply, record.Counter.MinAtLow); }},
    {'$', "1H", [](Record& record, const Reply& reply) { StoreInt16(reply, record.Counter.TtlAtHigh); }},
    {'$', "1L", [](Record& record, const Reply& reply) { StoreInt16(reply, record.Counter.TtlAtLow); }},
    {'@', "DI",
     [](Record& record, const Reply& reply) { StoreDigitPair(reply, record.Counter.AlarmSetting); }},
    {'@', "RP", [](Record& record, const Reply& reply) { StorePair(reply, record.Counter.InitialValue); }},
    {'@', "RA", [](Record& record, const Reply& reply) { StorePair(reply, record.Counter.AlarmValue); }},
};

void SendReads(Line& line, std::span<const FamilyRead> reads, const ModuleContact& contact,
               ModuleRecord& record) {
    for (const FamilyRead& read : reads) {
        if (const auto reply = AskContact(line, contact, record.Model, read.Lead, read.Code))
            read.Store(record, *reply);
        else
            record.Unread.push_back(read.Lead + std::string(read.Code));
    }
}

std::int16_t BaudCodeAt(const std::string& reply, std::size_t position) {
    return static_cast<std::int16_t>(DigitAt(reply, position) - 3);
}

} // namespace

std::optional<std::string> AskContact(Line& line, const ModuleContact& contact, std::string_view model,
                                      char lead, const std::string& tail) {
    const bool repeated = contact.Belief == Belief::Repeated;
    for (int tries = 0; tries < (repeated ? 2 : 1); ++tries) {
        if (repeated && !line.AwaitSilence() && tries > 0)
            break;
        line.Exchange(lead + contact.AddressHex + tail, contact.Checksum, contact.BaudCode,
                      line.ReplyTimeout);
        if (contact.Belief == Belief::Exact
                ? line.ReplyIs('!')
                : line.ReplyStatus != 0 &&
                      FitsForm(line.ReplyText, ReplyFormOf(model, lead, tail), contact.Measure))
            return line.ReplyText;
        if (line.ReplyText.empty() || IsRefusal(line.ReplyText, contact.Measure)) // these are answers
            break;
    }
    return std::nullopt;
}

void DecodeConverterFormat(std::int32_t word, ModuleRecord& record) {
    const auto bits = [word](int divisor, int modulus) {
        return static_cast<std::int16_t>(word / divisor % modulus);
    };
    record.Checksum = bits(16384, 2);
    record.DataFormat = bits(1, 4);
    record.ConverterInterface = static_cast<std::int16_t>(word / 32768);
    record.Converter.FormatBit13 = bits(8192, 2);
    record.Converter.FormatBit8 = bits(256, 2);
    record.ConverterParity = bits(8, 4);
    record.ConverterStopBits = bits(4, 2);
    record.Converter.FormatWord = word;
}

bool DecodeConfigReply(const std::string& reply, const std::string& model, ModuleRecord& record) {
    const std::int16_t family = ModuleFamily(model);
    const auto format = HexNumber(Middle(reply, 8, family == Converter ? 4 : 2));
    if (!format)
        return false;
    const auto bits = static_cast<std::int32_t>(*format);
    record.BaudCode = BaudCodeAt(reply, 7);
    if (family == Converter) {
        record.Converter.SecondBaudCode = BaudCodeAt(reply, 6);
        DecodeConverterFormat(bits, record);
        return true;
    }
    record.Checksum = static_cast<std::int16_t>(bits / 64 % 2);
    if (family == AnalogInput || family == AnalogOutput || family == MultiAnalogInput)
        record.DataFormat = static_cast<std::int16_t>(bits % 4);
    if (family == CounterFrequency)
        record.Counter.GateTime = static_cast<std::int16_t>(bits / 4 % 2);
    return true;
}

bool ReadFamilySettings(Line& line, const std::string& model, const ModuleContact& contact,
                        ModuleRecord& record) {
    const std::int16_t family = ModuleFamily(model);
    record.Unread.clear();
    if (family == DigitalIo || RowOfModel(model).Kind == ModelKind::PortOutputs)
        SendReads(line, PolarityReads, contact, record);
    if (family == AnalogInput)
        SendReads(line, AlarmReads, contact, record);
    if (ModelSuffix(model) == "240")
        SendReads(line, Suffix240Reads, contact, record);
    if (family == CounterFrequency)
        SendReads(line, CounterReads, contact, record);
    return record.Unread.empty();
}

} // namespace kavro
