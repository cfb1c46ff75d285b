#pragma once

#include "link/messages.h"
#include "map/session.h"

#include <string>

class QWidget;

namespace kavro {

/// Checks the loops of the line file that is open, or of one that is asked for first: asks whether a check
/// that was left is to be gone on with, whether outputs may be driven, and who checks; then shows
/// `LoopCheckForm`. `person`: who is offered. Throws `RuntimeFailure` when it cannot begin.
void CheckLoops(Session& session, Messages& messages, const std::string& person, QWidget* window);

} // namespace kavro
