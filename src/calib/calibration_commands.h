#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// Forms of a good reply. "AA" is the address that the module is spoken to at, or its own.
enum class AnswerForm {
    Acknowledgement, ///< "!AA"
    Output,          ///< ">"
    Configuration,   ///< "!AATTCCFF"
    Temperature,     ///< ">+0025.3"
};

/// What came back.
enum class Heard { Good, Refused, Nothing, Unreadable };

/// One command of a calibration, and what the user is told of it.
struct Question {
    std::string Command;
    AnswerForm Form = AnswerForm::Acknowledgement;
    std::string What;      ///< "Offset calibration"
    std::string Done;      ///< what a good reply says: "stored"; empty: nothing that is worth telling
    std::string Otherwise; ///< sentence that follows when no good reply came
};

/// `lead`, the address of entry `index` and `code` as one command, for example "$", "01", "3".
std::string CalibrationCommand(const Session& session, int index, char lead, const std::string& code);

/// One transaction of a calibration. Adds to `told` what came of it: "Offset calibration: refused by the
/// module." A port that was lost is opened again first, so that what was interrupted can be tried again in
/// the dialog. Throws `RuntimeFailure` when the port fails or cannot be opened, which is also told.
Heard AskCalibration(Session& session, int index, const Question& question, int timeoutMs, std::string& told);

/// Sends such a command and leaves its reply unread.
void SendCalibration(Session& session, int index, const std::string& command);

} // namespace kavro
