#pragma once

#include "map/session.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// What is known of the modules of a line, by address: their models and, where a map tells them, the range
/// and data format that values are measured in.
class KnownModules {
public:
    KnownModules() = default;
    /// The modules of the session's list.
    explicit KnownModules(const Session& session);

    /// Takes the model from a reply to "$AAM", and forgets the range of a module that tells another one than
    /// the map, or has just been given it; anything else changes nothing. Bytes as they went over the line.
    void Learn(std::string_view sent, std::string_view received);

    /// The record of a map; null when no map tells of the module.
    const ModuleRecord* Record(int address) const;
    /// The model, of a map or learned; empty when it is not known.
    std::string_view Model(int address) const;

private:
    void LearnModel(int address, const std::string& model);
    void LearnSetup(int address, std::string_view codes);

    std::array<std::optional<ModuleRecord>, ModuleTable::Size> records_{};
    std::array<std::string, ModuleTable::Size> learned_{};
};

/// An exchange in words, as far as it is understood.
struct ExchangeWords {
    std::optional<int> Address; ///< that the command names, 0 to 255
    std::string Asked;          ///< "05: read configuration"; empty when the command is not known
    std::string Answered;       ///< "8250: +/- 10V, Engineering Units, 9600 baud, no checksum", "5.123 V",
                                ///< "refused by 05"; empty when nothing came, or it is not understood
    bool Unexpected = false;    ///< a whole reply came that is not one to this command
};

/// The words for a command and what came back, as they went over the line: an echo in front of the reply,
/// checksums and carriage returns are recognised. Without its carriage return a reply counts where the
/// command has none either; else it was cut. A value whose range no map tells stands as it came. Where no
/// model is known, the words are those on which all families that have the command agree. Stray characters
/// have no command.
ExchangeWords WordsOf(std::string_view sent, std::string_view received, const KnownModules& known);

} // namespace kavro
