#include "map/module_access.h"

#include "link/codes.h"
#include "link/text.h"

#include <limits>

namespace kavro {

namespace {

constexpr std::int16_t InitialisationBaudCode = 3; // 9600
constexpr std::size_t ConfigReplyLength = 9;       // "!AATTCCFF"
constexpr std::size_t AlarmReplyLength = 8;        // "!AASOOII"

// What "$AA2" reports, converted as a whole before any field of the entry changes.
struct ReportedConfig {
    std::int16_t InputRange = 0;
    std::int16_t BaudCode = 0;
    std::int16_t Format = 0;
};

std::int16_t HexField(const std::string& reply, std::size_t first, const char* what) {
    const std::string digits = Middle(reply, first, 2);
    const auto value = HexNumber(digits);
    if (!value)
        throw RuntimeFailure("The module reports the " + std::string(what) + " \"" + digits +
                             "\", which is not a hexadecimal number.");
    return static_cast<std::int16_t>(*value);
}

ReportedConfig DecodeConfig(const std::string& reply) {
    ReportedConfig config;
    config.InputRange = HexField(reply, 4, "range code");
    // Read as a decimal number: "0A" is an error here, although it stands for 57600 baud.
    config.BaudCode = static_cast<std::int16_t>(WholeNumber16(Middle(reply, 6, 2), "reported baud code") - 3);
    config.Format = HexField(reply, 8, "format byte");
    return config;
}

void ReadAlarmLimit(Session& session, int index, const char* code, float& limit) {
    ExchangeWithModule(session, index, "@" + AddressText(session, index) + code, session.Line.ReplyTimeout);
    const double value = NumericValue(Middle(session.Line.ReplyText, 4));
    if (session.Line.ReplyIs('!') && std::abs(value) <= std::numeric_limits<float>::max())
        limit = static_cast<float>(value);
}

void ReadAlarms(Session& session, int index) {
    ModuleRecord& record = session.ModuleTable[index];
    ReadAlarmLimit(session, index, "RL", record.LowAlarm);
    ReadAlarmLimit(session, index, "RH", record.HighAlarm);
    ExchangeWithModule(session, index, "@" + AddressText(session, index) + "DI", session.Line.ReplyTimeout);
    const std::string& reply = session.Line.ReplyText;
    if (session.Line.ReplyIs('!') && reply.size() == AlarmReplyLength)
        record.AlarmMode = static_cast<std::int16_t>(NumericValue(Middle(reply, 4, 1)));
}

// The reply's value in the range's unit; nothing when it is not a number of the format.
std::optional<double> DecodedValue(const std::string& text, std::int16_t dataFormat, double fullScale) {
    if (dataFormat == TwosComplement) {
        const auto bits = HexNumber(Trim(text));
        if (!bits || *bits > 0xFFFF)
            return std::nullopt;
        return static_cast<std::int16_t>(*bits) * fullScale / 32767;
    }
    const auto value = LeadingNumber(text);
    return value && dataFormat == PercentOfRange ? std::optional(*value * fullScale / 100) : value;
}

} // namespace

std::int16_t ModuleAddress(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    return index == session.ScanIndex ? std::int16_t{0} : record.Address;
}

std::int16_t ModuleBaudCode(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    return index == session.ScanIndex ? InitialisationBaudCode : record.BaudCode;
}

std::int16_t ModuleChecksum(const Session& session, int index) {
    // Address 00 is spoken to without checksum even if its entry says otherwise; this is meant.
    return ModuleAddress(session, index) == 0 ? std::int16_t{0} : session.ModuleTable[index].Checksum;
}

std::string AddressText(const Session& session, int index) {
    return ToHex(ModuleAddress(session, index), 2);
}

std::string CommandFor(const Session& session, int index, char lead, const std::string& tail) {
    return lead + AddressText(session, index) + tail;
}

std::string ShownAddress(std::int16_t address) {
    return std::to_string(address) + " (" + ToHex(address, 2) + "H)";
}

void OpenPort(Line& line) {
    // Opening applies the settings last applied, so the baud rate is still that of `PortBaudCode`.
    line.CommPort(line.CurrentPort).PortOpen(true);
}

bool ExchangeWithModule(Session& session, int index, const std::string& command, int timeoutMs) {
    OpenPort(session.Line);
    return session.Line.Exchange(command, ModuleChecksum(session, index), ModuleBaudCode(session, index),
                                 timeoutMs);
}

void ReadModuleConfig(Session& session, int index) {
    ExchangeWithModule(session, index, "$" + AddressText(session, index) + "2", session.Line.ReplyTimeout);
    if (!session.Line.ReplyIs('!') || session.Line.ReplyText.size() != ConfigReplyLength)
        return;
    const ReportedConfig config = DecodeConfig(session.Line.ReplyText);
    ModuleRecord& record = session.ModuleTable[index];
    record.InputRange = config.InputRange;
    record.BaudCode = config.BaudCode;
    record.Checksum = static_cast<std::int16_t>(config.Format / 64 % 2);
    const std::int16_t family = ModuleFamily(record.Model);
    if (family == AnalogInput || family == AnalogOutput)
        record.DataFormat = static_cast<std::int16_t>(config.Format % 4);
    if (family == AnalogInput)
        ReadAlarms(session, index);
}

AnalogReading ReadAnalogInput(Session& session, int index, int channel) {
    const ModuleRecord& record = session.ModuleTable[index];
    std::string command = "#" + AddressText(session, index);
    if (ChannelCount(record.Model).value_or(0) > 1)
        command += std::to_string(channel);
    ExchangeWithModule(session, index, command, session.Line.ReplyTimeout);
    if (!session.Line.ReplyIs('>')) {
        if (session.Line.ReplyStatus != 0 && !session.Line.ReplyIs('?'))
            session.Line.NoteUnfit();
        return {"*error*", std::nullopt};
    }
    if (record.DataFormat < EngineeringUnits || record.DataFormat > Ohms)
        return {};
    // The full scale is that of the selected module, while the format is that of the module read; this is
    // meant.
    const double fullScale = record.DataFormat == PercentOfRange || record.DataFormat == TwosComplement
                                 ? RangeFullScale(session.ModuleTable[session.SelectedModule].InputRange)
                                 : 0;
    AnalogReading reading = DecodeReading(Middle(session.Line.ReplyText, 2), record.DataFormat, fullScale);
    if (!reading.Value)
        session.Line.NoteUnfit();
    return reading;
}

AnalogReading DecodeReading(const std::string& text, std::int16_t dataFormat, double fullScale) {
    const auto value = DecodedValue(text, dataFormat, fullScale);
    if (!value) // a garbled reply must not pass for a reading of 0
        return {"*error*", std::nullopt};
    return {FormatNumber(*value, 1, 4), value};
}

std::optional<unsigned> ReadChannelEnables(Session& session, int index, int timeoutMs) {
    if (!ExchangeWithModule(session, index, "$" + AddressText(session, index) + "6", timeoutMs))
        return std::nullopt;
    const std::string& reply = session.Line.ReplyText;
    return static_cast<unsigned>(HexDigitValue(Middle(reply, 4, 1)) * 16 +
                                 HexDigitValue(Middle(reply, 5, 1)));
}

} // namespace kavro
