#pragma once

#include "link/line.h"
#include "link/messages.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kavro {

/// Reads the start-up settings file COM.CFG into the line's settings and opens the port.
///
/// The file holds items that are separated by commas or line ends: reply time-out in ms, port number, parity
/// letter, data bits, stop bits, then the baud rates to search. Without a file COM1 is opened with 9600 to
/// search. Content that can be read but is wrong is told by a message and replaced by defaults; any failure
/// (too few items, not a number, a port that cannot be opened) is told by two messages, and then
/// `showComPortForm` is called, with the time-out of a good file in `FileTimeout` and defaults for what the
/// file did not set. `startPort`, when given, is used in place of any other port number.
void ReadPortConfig(Line& line, const std::string& configFilePath, std::optional<std::int16_t> startPort,
                    Messages& messages, const std::function<void()>& showComPortForm);

/// What is left of COM.CFG once its port and baud rates are in the line's settings.
struct PortConfigFile {
    bool Ok = true;           ///< false: a wrong port, or no usable baud rate, was replaced by a default
    std::int16_t Timeout = 0; ///< reply time-out, ms
};

/// The first half of `ReadPortConfig`: reads the file into `CurrentPort` and the port's settings; opens
/// nothing. Throws `RuntimeFailure` when the file cannot be read or has not the items.
PortConfigFile LoadPortConfig(Line& line, const std::string& configFilePath,
                              std::optional<std::int16_t> startPort);

/// The second half: the time-outs. False, with default time-outs, when the content is wrong or they overflow.
bool ApplyFileTimeouts(Line& line, const PortConfigFile& file);

/// The content of COM.CFG for the line's current port, one item per line, lines ending in "\n".
std::string PortConfigText(const Line& line);

/// Whether a port and baud rate may stand in COM.CFG. Ports 0 to 4 pass: the bound holds for the file only,
/// the dialog offers ports 1 to 8. Parity, data bits and stop bits are accepted unchecked.
bool IsValidPortSetting(std::int16_t port, std::int32_t baud, const std::string& parity,
                        std::int16_t dataBits, std::int16_t stopBits);

/// Settings of a port without a file: 8 data bits, 9600 baud to search.
PortSettingsRecord DefaultPortSettings();

/// What the user entered in the COM Port dialog.
struct PortChoice {
    std::int16_t Port = 1;                     ///< 1 to 8
    std::int16_t Parity = 0;                   ///< 0 none, 1 odd, 2 even
    std::array<std::int16_t, 8> BaudEnabled{}; ///< 1 = to search, by baud code
    std::string DataBits;                      ///< decimal text
    std::int16_t StopBits = 0;                 ///< list index
    std::string Timeout;                       ///< decimal text, ms
};

/// The numbers of a choice. Each throws `RuntimeFailure`, which names the limits, for a text without digits
/// alone or a number that cannot be kept; a TimeOut below 100 and data bits beyond 4 to 8 can.
std::int16_t DataBitsIn(const std::string& text);
std::int16_t TimeoutIn(const std::string& text);

/// Applies the dialog's choice: opens the new port before the old one is closed, stores the settings, applies
/// the lowest baud rate chosen and the time-outs. A time-out below 100 is told by a message and becomes 100,
/// in `choice` too. Throws `RuntimeFailure` when something fails, with the port that was in use back in use.
void ApplyPortChoice(Line& line, PortChoice& choice, Messages& messages);

} // namespace kavro
