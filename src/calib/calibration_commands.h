#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// `lead`, the address of entry `index` and `code` as one command, for example "$", "01", "3".
std::string CalibrationCommand(const Session& session, int index, char lead, const std::string& code);

/// One transaction of a calibration. A port that was lost is opened again first, so that what was interrupted
/// can be tried again in the dialog. True when the reply is complete; throws `RuntimeFailure` when the port
/// fails or cannot be opened.
bool ExchangeCalibration(Session& session, int index, const std::string& command, int timeoutMs);

/// Sends such a command and leaves its reply unread.
void SendCalibration(Session& session, int index, const std::string& command);

} // namespace kavro
