#pragma once

#include "project/line_work.h"

#include <functional>

namespace kavro {

/// How work in a window ended.
enum class WorkEnd {
    Done,
    Stopped, ///< by the user, before a command
    Failed,  ///< told
};

/// Runs work on all modules of a line for a window, one at a time: before each command the window lives for a
/// moment and sees the session's list, which is put back at the end.
class WorkInWindow {
public:
    WorkInWindow(kavro::Session& session, kavro::Messages& messages)
        : session_(session), messages_(messages) {}

    /// Runs `work`, which is told in `told`. A failure is shown.
    WorkEnd Run(kavro::Messages& told, const decltype(LineWork::Progress)& progress,
                const std::function<void(const LineWork& work)>& work);

    /// The work ends before its next command; `Run` returns `Stopped` then.
    void Stop() { stopping_ = true; }
    bool Stopping() const { return stopping_; }
    bool Running() const { return running_; }

private:
    void LetWindowsLive(KeptList& list) const;

    kavro::Session& session_;
    kavro::Messages& messages_;
    bool running_ = false;
    bool stopping_ = false;
};

} // namespace kavro
