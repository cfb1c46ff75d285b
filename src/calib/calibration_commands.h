#pragma once

#include "map/module_command.h"
#include "map/session.h"

#include <string>

namespace kavro {

/// One command of a calibration, and what the user is told of it.
struct Question {
    char Lead = '$';       ///< before the module's address
    std::string Tail;      ///< behind it: "3"
    std::string What;      ///< "Offset calibration"
    std::string Done;      ///< what a good reply says: "stored"; empty: nothing that is worth telling
    std::string Otherwise; ///< sentence that follows when no good reply came
};

/// One transaction of a calibration, sent once and with no more waiting than its time-out. Adds to `told`
/// what came of it: "Offset calibration: refused by the module." A port that was lost is opened again first,
/// so that what was interrupted can be tried again in the dialog. Throws `RuntimeFailure` when the port fails
/// or cannot be opened, which is also told.
Answer AskCalibration(Session& session, int index, const Question& question, int timeoutMs,
                      std::string& told);

/// Sends such a command and leaves its reply unread.
void SendCalibration(Session& session, int index, char lead, const std::string& tail);

} // namespace kavro
