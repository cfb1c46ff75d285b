#include "cli/line_work_run.h"

#include "cli/interrupt.h"
#include "cli/notes.h"
#include "cli/terminal_line.h"
#include "link/runtime_failure.h"

namespace kavro {

namespace {

// Tells above the line of progress.
class NotesAboveLine : public Messages {
public:
    explicit NotesAboveLine(TerminalLine& line) : line_(line) {}

    void Show(const std::string& text, const std::string& /*title*/) override {
        line_.Clear();
        PrintNote(text);
    }

private:
    TerminalLine& line_;
};

} // namespace

bool RunLineWork(Session& session, const std::function<void(const LineWork& work)>& work) {
    TerminalLine line;
    NotesAboveLine notes(line);
    const LineWorkScope scope(session);
    const InterruptWatch watch(session.Line);
    const BeforeEachCommand stop(session.Line, [&](const std::string&) {
        if (watch.Interrupted())
            throw Interruption();
    });
    const auto progress = [&](const std::string& doing, int done, int total) {
        const std::string of =
            total > 0 ? std::to_string(done + 1) + " of " + std::to_string(total) + ", " : "";
        line.Write(of + doing);
    };
    try {
        work({session, {notes, Notes().InWords().Words}, progress});
    } catch (const Interruption&) {
        notes.Show("Stopped.", {});
        return false;
    }
    return true;
}

} // namespace kavro
