#pragma once

#include "cli/cli_session.h"
#include "map/identify.h"
#include "map/session.h"
#include "terminal/address_rule.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class QCommandLineParser;

namespace kavro {

/// A module and the ways in which it is asked whether it is there, in order.
struct Contact {
    std::int16_t Address = 0; ///< to speak at; 0: a module in its initialisation state
    std::vector<SendSettings> Ways;
};

/// What the command line says of the way.
struct ContactOptions {
    std::optional<std::int16_t> BaudCode; ///< nothing: that of the map, else 9600
    bool Checksum = false;                ///< only with a checksum
};

/// The contact to the module at an address, by the modules that the session knows and by the options. Throws
/// `RuntimeFailure` when the options cannot be met.
Contact ContactOf(const Session& session, std::int16_t address, const ContactOptions& options);

/// The line that a command line names, and the way to a module on it.
struct ModuleOnLine {
    std::shared_ptr<CliSession> Cli;
    kavro::Contact Contact;
};

/// Adds the argument ADDRESS and the options that say how the module there is spoken to.
void AddContactOptions(QCommandLineParser& parser);

/// Reads them; ADDRESS is the argument number `place`, counted from 0. Opens nothing. Throws `RuntimeFailure`
/// when one is wrong, or when there is no ADDRESS.
ModuleOnLine ReadModuleOnLine(const QCommandLineParser& parser, int place = 0);

/// Makes the module at the contact the only and selected entry of the session. Tells on standard error when
/// none answers there.
Identified FindModule(Session& session, const Contact& contact);

} // namespace kavro
