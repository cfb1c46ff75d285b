#pragma once

#include "link/messages.h"
#include "map/session.h"

class QWidget;

namespace kavro {

/// The operations of the main window on a line file, which each asks for first. Each throws `RuntimeFailure`
/// when it cannot begin; nothing is sent then.

/// Saves the modules of the list.
void BackUpToFile(Session& session, Messages& messages, QWidget* window);

/// Compares a line file with the line; from there it can be restored.
void CompareWithFile(Session& session, Messages& messages, QWidget* window);

/// Writes a line file back to the line, or goes on with a restore of it that was cut off.
void RestoreFromFile(Session& session, Messages& messages, QWidget* window);

} // namespace kavro
