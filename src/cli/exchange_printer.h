#pragma once

#include "cli/row_printer.h"
#include "diag/analog_output_panel.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// A command and its reply as they are printed.
struct Exchanged {
    std::string Command;
    std::string Reply;     ///< what came, without carriage return
    bool Complete = false; ///< the reply ended with its carriage return and a good checksum
    std::int32_t Baud = 0; ///< at which it was sent
};

/// What a command drove, and what the module told of it before and after.
struct DrivenOutput {
    std::string Name, Unit;             ///< "A" and "V"; empty where there is none
    std::optional<ToldOutput> Old, New; ///< "+7.250", "on"; nothing when it did not tell
};

/// A pair as a line: "$012 -> !01400600", with codes such as "<0A>" for what cannot be printed.
std::string ExchangeText(const Exchanged& exchanged);

/// What was driven as a line: "output A: +0.000 V -> +7.250 V", "output: (not told) -> 12.500 mA".
std::string DrivenText(const DrivenOutput& driven);

/// A pair as a JSON object in plain ASCII on one line. A byte is the character of the same number, so that
/// nothing is lost.
std::string ExchangeJson(const Exchanged& exchanged);

/// Prints pairs on standard output, each at once: as lines, or as one JSON array.
class ExchangePrinter {
public:
    explicit ExchangePrinter(bool json) : json_(json), rows_(json) {}

    void Print(const Exchanged& exchanged) {
        rows_.Print(json_ ? ExchangeJson(exchanged) : ExchangeText(exchanged) + "\n");
    }

    /// Prints a pair and what it drove: "output 3: off -> on", or the members "output", "unit",
    /// "old" and "new".
    void Print(const Exchanged& exchanged, const DrivenOutput& driven);

    /// Ends the output.
    void Close() { rows_.Close(); }

    /// Whether standard output is a pipe that nobody reads any more.
    bool Abandoned() const { return rows_.Abandoned(); }

private:
    const bool json_;
    RowPrinter rows_;
};

} // namespace kavro
