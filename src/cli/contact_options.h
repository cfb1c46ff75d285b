#pragma once

#include "cli/cli_session.h"
#include "map/module_contact.h"

#include <memory>

class QCommandLineParser;

namespace kavro {

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

} // namespace kavro
