#pragma once

#include "map/kept_list.h"
#include "map/module_command.h"
#include "map/module_contact.h"

#include <functional>
#include <string>
#include <utility>

namespace kavro {

/// Work on all modules of a line: where it is done and told. What the session's list is to be afterwards is
/// kept by who starts it (`KeptList`).
struct LineWork {
    kavro::Session& Session;
    Teller Tell;
    /// Told before each module: how many are done of how many.
    std::function<void(const std::string& doing, int done, int total)> Progress = [](const std::string&, int,
                                                                                     int) {};
};

/// A line's `BeforeCommand`, as long as it lives.
class BeforeEachCommand {
public:
    BeforeEachCommand(Line& line, decltype(Line::BeforeCommand) call)
        : line_(line), before_(std::exchange(line.BeforeCommand, std::move(call))) {}
    ~BeforeEachCommand() { line_.BeforeCommand = std::move(before_); }
    BeforeEachCommand(const BeforeEachCommand&) = delete;
    BeforeEachCommand& operator=(const BeforeEachCommand&) = delete;

private:
    Line& line_;
    decltype(Line::BeforeCommand) before_;
};

/// What every such work needs of the line as long as it lasts: the session's list is put back at its end,
/// each transaction is careful, and a change of the baud rate does not cost a second, as modules do not
/// notice it.
class LineWorkScope {
public:
    explicit LineWorkScope(Session& session)
        : List(session), careful_(session.Line), line_(session.Line),
          pauseMs_(std::exchange(session.Line.BaudChangePauseMs, ShortPauseMs)) {}
    ~LineWorkScope() { line_.BaudChangePauseMs = pauseMs_; }
    LineWorkScope(const LineWorkScope&) = delete;
    LineWorkScope& operator=(const LineWorkScope&) = delete;

    KeptList List;

private:
    static constexpr int ShortPauseMs = 100;

    CarefulTransactions careful_;
    Line& line_;
    const int pauseMs_;
};

} // namespace kavro
