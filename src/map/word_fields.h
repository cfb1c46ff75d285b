#pragma once

#include "map/module_record.h"

#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// What is known of the module whose texts are put into words.
struct WordContext {
    std::string_view Address;             ///< that it is spoken to by, two hexadecimal digits
    std::string_view Model = {};          ///< empty when it is not known
    const ModuleRecord* Record = nullptr; ///< of a map, for ranges and formats; null without one
};

/// Puts `text` into words by a pattern. Every field takes its characters from the front of what is left of
/// the text; nothing when they are not of the field, or when something is left at the end.
///
/// Fields of N characters: {x} a digit or letter, {p} a port, {0} a "0" that says nothing, {hN} hexadecimal
/// digits as they stand, {cN} these as a decimal count, {dN} decimal digits as a number, {vN} these as
/// tenths, {sN} a sign and N hexadecimal digits as a count, {b} a signed byte, {mN} hexadecimal digits as the
/// numbers of the bits that are set, {mN:low,high} as their names, {off|on|...} a digit as the word in that
/// place. Fields of all that is left: {T} text, {V} a reading, {E} a limit, {O} an output, {P} volts, {K} a
/// temperature, {F} a count or a frequency, {W} the words of digital outputs and inputs, {G} and {Q} the
/// codes of `SetupWords` and `ConverterSetupWords`. {M} takes nothing and is the model, {A} takes an address,
/// and is empty when it is the module's.
std::optional<std::string> FilledIn(std::string_view pattern, std::string_view text,
                                    const WordContext& known);

} // namespace kavro
