#pragma once

#include "project/line_work.h"

#include <functional>
#include <string>

namespace kavro {

/// Runs work on all modules of the open port's line: told, with its progress, on standard error, and ended
/// before the next command by Ctrl+C. The session's list is put back at the end. False when it was ended
/// early, which is told.
bool RunLineWork(Session& session, const std::function<void(const LineWork& work)>& work);

} // namespace kavro
