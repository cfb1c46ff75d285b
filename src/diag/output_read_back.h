#pragma once

#include "diag/analog_output_panel.h"
#include "map/module_command.h"

#include <optional>
#include <string>

namespace kavro {

/// What became of a value that an analog output was sent.
struct OutputReadBack {
    double Sent = 0;
    Answer Accepted = Answer::Ok;          ///< what the module said to it
    std::optional<ToldOutput> Told{};      ///< what it tells that it stands at; nothing when it does not
    std::optional<std::string> Measured{}; ///< what stands at its terminals
};

/// The same in words.
struct ReadBackWords {
    std::string Text;     ///< "Sent 12.500 mA; read back 12.500 mA; at the terminals 12.512 mA (+0.012 mA)."
    bool Differs = false; ///< the output is not known to stand, within `resolution`, at what was sent
};

/// That a value was sent, before anything is known of it but what the module said to it; `state` is why:
/// "Sent 12.500 mA: no reply; not read back yet."
ReadBackWords WordsBeforeReading(const OutputReadBack& readBack, const std::string& unit,
                                 const std::string& separator, const std::string& state);

/// Puts it into words, with `separator` as the decimal separator.
ReadBackWords WordsOf(const OutputReadBack& readBack, const std::string& unit, double resolution,
                      const std::string& separator);

} // namespace kavro
