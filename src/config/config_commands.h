#pragma once

#include "link/messages.h"
#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// How a module is spoken to: what every configuration dialog can change.
struct LinkSettings {
    std::int32_t Address = 0;  ///< 0 to 255; above is refused
    std::int16_t BaudCode = 0; ///< 0 to 7
    std::int16_t Checksum = 0; ///< 0 or 1

    bool operator==(const LinkSettings&) const = default;
};

/// What became of a module's new settings.
enum class ConfigOutcome {
    Refused,    ///< a setting is not possible: told, and nothing was sent
    Incomplete, ///< a command was not accepted: told, and its settings are as they were
    Complete,   ///< every command was accepted
};

/// Address, baud code and checksum of an entry.
LinkSettings LinkSettingsOf(const ModuleRecord& record);

/// Keeps what the module has accepted.
void StoreLinkSettings(ModuleRecord& record, const LinkSettings& link);

/// An entry of a dialog that is not possible.
struct RefusedEntry {
    std::string Control; ///< its name
    std::string Text;    ///< for the user
};

/// The address, when it is above 255.
std::optional<RefusedEntry> RefusedAddress(const LinkSettings& link);

/// False, with the message shown and `ConfigResult` 2, when the address is above 255.
bool CheckAddress(Session& session, const LinkSettings& link, Messages& messages);

/// Tells a refused entry, and whether there was one.
bool TellRefused(const std::optional<RefusedEntry>& refused, Messages& messages);

/// The format byte FF of a module configuration: bit 6 checksum, and the family's own bits.
std::int16_t FormatByte(const LinkSettings& link, std::int16_t familyBits);

/// What a baud code becomes on the wire: code 0 is sent as 3.
inline constexpr std::int16_t WireBaudOffset = 3;

/// Sends "%AANN" and `fields`, NN being the new address. True when the module answers exactly "!NN". Changes
/// nothing in the entry.
bool WriteModuleConfig(Session& session, int index, const LinkSettings& link, const std::string& fields);

/// Sends "%AANNTTCCFF": new address, type code, baud code + 3 and format byte, two hexadecimal digits each.
/// True when the module answers exactly "!NN". Changes nothing in the entry.
bool WriteModuleConfig(Session& session, int index, const LinkSettings& link, std::int16_t typeCode,
                       std::int16_t formatByte);

/// Sends `lead`, the entry's address at this moment, and `code`, for example "$", "01", "B1". True only for
/// the reply "!AA" and nothing behind it, AA naming the module.
bool WriteAcknowledged(Session& session, int index, char lead, const std::string& code);

/// Ends a step of a dialog's sequence: accepted, `ConfigResult` becomes 1; else `failure` is told and
/// `ConfigResult` stays as it was. Returns `accepted`.
bool NoteStep(Session& session, bool accepted, const char* failure, Messages& messages);

/// What became of a dialog's step "module configuration".
enum class StepResult {
    Unneeded, ///< nothing differs from the entry, and nothing was sent
    Accepted, ///< kept in the entry; `ConfigResult` is 1
    Failed,   ///< told; `ConfigResult` is 2
};

/// What the module configuration of an analog module writes.
struct AnalogModuleConfig {
    LinkSettings Link;
    std::int16_t Range = 0;      ///< range code
    std::int16_t DataFormat = 0; ///< data format code

    bool operator==(const AnalogModuleConfig&) const = default;
};

/// The step "module configuration" of an analog module.
StepResult ChangeAnalogModuleConfig(Session& session, int index, const AnalogModuleConfig& config,
                                    Messages& messages);

/// The same step of a digital I/O module, whose type code is 40 and whose format byte has the checksum
/// alone.
StepResult ChangeDigitalModuleConfig(Session& session, int index, const LinkSettings& link,
                                     Messages& messages);

/// A step for a further setting: sends `lead`, the entry's address at this moment, and `code`, and ends with
/// `NoteStep`. Accepted is any reply that begins with "!".
bool ChangeSetting(Session& session, int index, char lead, const std::string& code, const char* failure,
                   Messages& messages);

/// `Complete` or `Incomplete`.
constexpr ConfigOutcome OutcomeOf(bool complete) {
    return complete ? ConfigOutcome::Complete : ConfigOutcome::Incomplete;
}

/// The end of a dialog that tells its success last: tells it when `ConfigResult` is 1, wherever that comes
/// from and although a step may have failed; this is meant.
ConfigOutcome EndConfig(const Session& session, bool complete, Messages& messages);

/// Shows `text`, titled "Error".
void ShowError(Messages& messages, const std::string& text);

/// Texts that several dialogs share.
inline constexpr const char* ConfigFailedText = "Configuration command failed.";
inline constexpr const char* ConfigCompleteText = "Change configuration complete.";

} // namespace kavro
