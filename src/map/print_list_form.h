#pragma once

#include "map/session.h"

#include <QString>

class QWidget;

namespace kavro {

/// Asks for a printer and prints the list of modules, or makes a PDF file of it. `port`: what it is the list
/// of, "COM1: /dev/ttyUSB0". Throws `RuntimeFailure` when that fails.
void PrintList(QWidget* window, const Session& session, const QString& port);

} // namespace kavro
