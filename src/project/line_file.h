#pragma once

#include "config/config_names.h"
#include "link/json_object.h"
#include "map/module_contact.h"
#include "map/module_map.h"
#include "map/module_tags.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kavro {

/// A setting as a line file has it.
struct SavedSetting {
    std::string Name; ///< as `NamedSetting` has it
    SettingValue Value;
};

/// A channel of a module, as far as the user has said anything of it.
struct SavedChannel {
    TagAndNote Tags;
    UnknownKeys Others{};
};

/// One module of a line file.
struct SavedModule {
    std::int16_t Address = 0; ///< 0 to 255, its own
    std::string Model;        ///< without blanks at its end: "8250"
    std::string Firmware;     ///< "A2.5"; empty when it was not told
    TagAndNote Tags{};
    std::map<int, SavedChannel> Channels{};
    std::vector<SavedSetting> Settings{}; ///< those that the module told, but for model and address
    std::vector<std::string> History{};   ///< records of its calibrations as JSON, each on one line
    UnknownKeys Others{}, OtherSettings{};
};

/// A line as a file (*.kavro.json); `docs/formats.md` describes it.
struct LineFile {
    std::string Name;    ///< of the line, UTF-8
    std::string Time;    ///< of the backup, UTC: "2026-03-02T14:05:09Z"
    std::string Program; ///< its version
    std::vector<SavedModule> Modules{};
    UnknownKeys Others{};
};

/// How the names of line files end.
inline constexpr const char* LineFileSuffix = ".kavro.json";

/// The line that a text holds. Throws `RuntimeFailure` with the line number when it is damaged, no line file,
/// of a newer version, or holds a value that does not fit its setting; the description begins with a small
/// letter, to follow on the file's name.
LineFile ReadLineFileText(const std::string& text);

/// The same of a file. Throws `RuntimeFailure` that names the file.
LineFile LoadLineFile(const std::string& path);

/// The file as text: stable in its order, one setting a line.
std::string LineFileText(const LineFile& file);

/// The module at an address; null when there is none.
const SavedModule* ModuleIn(const LineFile& file, int address);
SavedModule* ModuleIn(LineFile& file, int address);

/// The setting of that name; null when the module did not tell it.
const SettingValue* SettingIn(const SavedModule& module, std::string_view name);

/// How the module was spoken to: 9600 baud without a checksum where the file does not tell it.
SendSettings SavedWay(const SavedModule& module);

/// "8250 at address 5 (05H)", with the tag in front where it has one: "TT-101, 8250 at address 5 (05H)".
std::string ShownModule(const SavedModule& module);

/// The modules of a line file as a map.
ModuleMap MapOf(const LineFile& file);

} // namespace kavro
