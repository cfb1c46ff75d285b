#pragma once

#include "link/messages.h"
#include "map/identify.h"
#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// How a command is sent.
struct SendSettings {
    std::int16_t Checksum = 0; ///< 1 = with checksum, 0 = without
    std::int16_t BaudCode = 3; ///< 0 to 7

    bool operator==(const SendSettings&) const = default;
};

/// A module and the ways in which it is asked whether it is there, in order.
struct Contact {
    std::int16_t Address = 0; ///< to speak at; 0: a module in its initialisation state
    std::vector<SendSettings> Ways;
};

/// What the user says of the way.
struct ContactOptions {
    std::optional<std::int16_t> BaudCode; ///< nothing: that of the map, else 9600
    bool Checksum = false;                ///< only with a checksum
};

/// The contact to the module at an address, by the modules that the session knows and by the options. A
/// module in its initialisation state is spoken to at 9600 baud without a checksum, whatever they are.
Contact ContactOf(const Session& session, std::int16_t address, const ContactOptions& options = {});

/// What a program calls itself and that by which it helps where a module is not understood, within a
/// sentence.
struct ProgramWords {
    const char* Name;      ///< "kavroctl"
    const char* Sending;   ///< shows what a module sends: "kavroctl send"
    const char* Searching; ///< finds the modules: "kavroctl search"
};

/// Where it is told what became of a module, and in whose words.
struct Teller {
    kavro::Messages& Messages;
    ProgramWords Words;

    void operator()(const std::string& text) const { Messages.Show(text); }
};

/// What came of asking for a module.
struct FoundModule {
    kavro::Identified Identified = Identified::No; ///< the module is an entry when it is `Partly` or `Fully`
    bool Heard = false;                            ///< something answered
};

/// Asks for the module at the contact, and makes it the only and selected entry of the session.
FoundModule TryContact(Session& session, const Contact& contact);

/// The same, and tells when no module is found there, or one that cannot be believed: `No`.
Identified FindModule(Session& session, const Contact& contact, const Teller& tell);

} // namespace kavro
