#include "calib/calibration_commands.h"

#include "link/runtime_failure.h"
#include "map/module_access.h"

namespace kavro {

namespace {

// Says what to do when the port fails in it.
template <class Operation>
void WithAdvice(Operation operation) {
    try {
        operation();
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(failure.what() +
                             std::string("\n\nConnect the line and try again: the port opens by itself."));
    }
}

void Tell(std::string& told, const Question& question, const std::string& outcome, bool good) {
    if (outcome.empty())
        return;
    told += (told.empty() ? "" : " ") + question.What + ": " + outcome + ".";
    if (!good && !question.Otherwise.empty())
        told += " " + question.Otherwise;
}

} // namespace

Answer AskCalibration(Session& session, int index, const Question& question, int timeoutMs,
                      std::string& told) {
    try {
        WithAdvice([&] {
            ExchangeWithModule(session, index, CommandFor(session, index, question.Lead, question.Tail),
                               timeoutMs);
        });
    } catch (const RuntimeFailure&) {
        Tell(told, question, "the port has failed", false);
        throw;
    }
    const Answer answer = LastAnswer(session, index, question.Lead, question.Tail);
    const bool good = answer == Answer::Ok;
    Tell(told, question, good ? question.Done : AnswerText(answer), good);
    return answer;
}

void SendCalibration(Session& session, int index, char lead, const std::string& tail) {
    WithAdvice([&] {
        OpenPort(session.Line);
        session.Line.CommandText = CommandFor(session, index, lead, tail);
        session.Line.SendCommand(session.Line.CommandText, ModuleChecksum(session, index),
                                 ModuleBaudCode(session, index));
    });
}

} // namespace kavro
