#include "map/identify.h"

#include "link/text.h"
#include "map/family_reads.h"

namespace kavro {

std::optional<ConfigAnswer> AskForConfig(Line& line, std::int16_t address, std::int16_t checksum,
                                         std::int16_t baudCode) {
    line.Exchange("$" + ToHex(address, 2) + "2", checksum, baudCode, line.ReplyTimeout);
    const std::size_t length = line.ReplyText.size();
    if (!line.ReplyIs('!') || (length != 9 && length != 11))
        return std::nullopt;
    return ConfigAnswer{address, checksum, baudCode, line.ReplyText};
}

Identified IdentifyModule(Line& line, const ConfigAnswer& answer, ModuleRecord& record) {
    const auto reportedAddress = HexNumber(Middle(answer.Reply, 2, 2));
    const auto typeCode = HexNumber(Middle(answer.Reply, 4, 2));
    const auto format = HexNumber(Middle(answer.Reply, 8, 2));
    if (!typeCode || !format || (answer.Address == 0 && !reportedAddress))
        return Identified::No;
    record.Address = answer.Address == 0 ? static_cast<std::int16_t>(*reportedAddress) : answer.Address;
    record.InputRange = static_cast<std::int16_t>(*typeCode);

    const std::string addressHex = ToHex(answer.Address, 2);
    line.Exchange("$" + addressHex + "M", answer.Checksum, answer.BaudCode, line.ReplyTimeout);
    const std::string moduleName = Middle(line.ReplyText, 4); // used as it comes, valid or not
    record.Model = FixedText(moduleName, 6);

    if (!DecodeConfigReply(answer.Reply, moduleName, record))
        return Identified::No;
    const std::int16_t checksum = answer.Address == 0 ? std::int16_t{0} : record.Checksum;
    const bool all = ReadFamilySettings(line, moduleName, {addressHex, checksum, answer.BaudCode}, record);
    return all ? Identified::Fully : Identified::Partly;
}

} // namespace kavro
