#include "map/list_line.h"

#include "link/baud.h"
#include "link/codes.h"
#include "link/text.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr const char* Sep = "   ";
constexpr std::size_t LongestLine = 59;          // of an analog module
constexpr const char* BlankFormat = "         "; // nine blanks, the width of the format column

std::string AnalogFormat(const ModuleRecord& record, bool output) {
    switch (record.DataFormat) {
    case EngineeringUnits:
        return Sep + RangeUnit(record.InputRange, record.DataFormat) + "  ";
    case PercentOfRange:
        return "   %     ";
    case TwosComplement:
        return output ? "   HEX   " : "   2's   ";
    case Ohms:
        return output ? "" : "   Ohms  ";
    default:
        return "";
    }
}

std::string ConverterParityText(std::int16_t parity) {
    if (parity == 1)
        return "  o,";
    return parity == 0 || parity == 2 ? "  n," : "  e,";
}

// The format column and the remark.
std::string FamilyColumns(const ModuleRecord& record) {
    const std::string blankFormat = std::string(Sep) + BlankFormat + Sep;
    switch (ModuleFamily(record.Model)) {
    case DigitalIo:
        return blankFormat + "Digital I/O";
    case AnalogInput:
    case MultiAnalogInput:
        return Sep + AnalogFormat(record, false) + Sep + RangeName(record.InputRange);
    case AnalogOutput:
        return Sep + AnalogFormat(record, true) + Sep + RangeName(record.InputRange);
    case CounterFrequency:
        return blankFormat + RangeName(record.InputRange);
    case Converter:
        return Sep + ConverterParityText(record.ConverterParity) + std::to_string(record.DataFormat + 5) +
               "," + std::to_string(record.ConverterStopBits + 1) + "  " + Sep +
               (record.ConverterInterface != 0 ? "RS-485" : "RS-422");
    default:
        return blankFormat + "Unknown Module";
    }
}

} // namespace

std::string ShownModel(const std::string& model) {
    std::string shown = FixedText(model, 6);
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return shown;
}

std::string ListLine(const ModuleRecord& record, bool initialisation) {
    return (initialisation ? "*" : " ") + PadLeft(std::to_string(record.Address), 3) + "(" +
           ToHex(record.Address, 2) + "H)" + Sep + ShownModel(record.Model) + Sep + " " +
           FixedText(std::to_string(BaudFromCode(record.BaudCode)), 6) + FamilyColumns(record);
}

std::string BuildListLine(const Session& session, int index) {
    return ListLine(session.ModuleTable[index], index == session.ScanIndex);
}

std::string ShownLine(const Session& session, int index) {
    const std::string& line = session.Device.at(static_cast<std::size_t>(index));
    if (session.ModuleTable[index].Answers)
        return line;
    return FixedText(line, std::max(line.size(), LongestLine)) +
           std::string(NoAnswerMark); // one below the other
}

} // namespace kavro
