#pragma once

#include "map/session.h"

#include <optional>
#include <string>

namespace kavro {

/// Address to speak to entry `index` at: 0 for `ScanIndex`, else the entry's. Bounds are checked.
std::int16_t ModuleAddress(const Session& session, int index);

/// Baud code to speak to entry `index` at: 3 (9600) for `ScanIndex`, else the entry's.
std::int16_t ModuleBaudCode(const Session& session, int index);

/// Checksum setting to speak to entry `index` with: 0 at address 0 whatever the entry says, else the entry's.
std::int16_t ModuleChecksum(const Session& session, int index);

/// `ModuleAddress` as two hexadecimal digits, as it stands in commands.
std::string AddressText(const Session& session, int index);

/// A command to entry `index`: `lead`, its address and `tail`, for example "$", "01", "6".
std::string CommandFor(const Session& session, int index, char lead, const std::string& tail);

/// An address as it is shown: "255 (FFH)".
std::string ShownAddress(std::int16_t address);

/// Opens the port in use unless it is open, as a device that was unplugged may be back. Throws
/// `RuntimeFailure` with what is wrong with it.
void OpenPort(Line& line);

/// One transaction with entry `index` at its address settings, on a port that is opened if need be; true when
/// the reply is complete.
bool ExchangeWithModule(Session& session, int index, const std::string& command, int timeoutMs);

/// Reads the set-up of entry `index` from its module ("$AA2", then the alarm reads of a single-channel analog
/// input) into the entry. A reply of another form leaves the entry, or the field, as it was. Throws
/// `RuntimeFailure`, with the entry unchanged, when the module reports codes that are not numbers.
///
/// Nothing in the dialogs calls it: a configuration dialog sends exactly its own commands and keeps in the
/// entry what the module accepted, and the search reads the set-up by commands and rules of its own. Neither
/// has room for these reads. It is for what reads a module again outside of them.
void ReadModuleConfig(Session& session, int index);

/// One reading of an analog input.
struct AnalogReading {
    std::string Text;            ///< "###0.0000", "*error*", or empty for a data format without readings
    std::optional<double> Value; ///< in the range's unit; nothing when `Text` is not a number
};

/// Reads channel `channel` of entry `index` ("#AA" and, on models of several channels, the channel in
/// decimal).
AnalogReading ReadAnalogInput(Session& session, int index, int channel);

/// The reading that a reply's text behind ">" stands for, in a data format and with the full scale of the
/// range; "*error*" when it is not a number.
AnalogReading DecodeReading(const std::string& text, std::int16_t dataFormat, double fullScale);

/// Reads which channels of entry `index` are enabled ("$AA6"): bit n for channel n. Nothing when no complete
/// reply came. The reply's first character is not tested.
std::optional<unsigned> ReadChannelEnables(Session& session, int index, int timeoutMs);

} // namespace kavro
