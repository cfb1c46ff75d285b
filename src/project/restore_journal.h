#pragma once

#include "link/append_file.h"
#include "link/line_listener.h"
#include "map/session.h"
#include "project/line_file.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Path of the journal beside a line file.
std::string JournalPath(const std::string& path);

/// What a run that was cut off has left.
struct CutOffRestore {
    std::vector<SavedModule> Wanted; ///< what the modules were to become
    std::vector<int> Done{};         ///< addresses of those that were read back and have everything
    std::vector<int> NotDone{};      ///< and of those that have not
    std::optional<int> InWork{};     ///< address of the one that was being written
    std::string LastCommand{};       ///< to it; empty before the first one
    std::string LastOutcome{};       ///< what came of that; empty: it is not known
};

/// Tells in a file what a restore does, so that one that was cut off can be told and gone on with: first
/// which modules are to become what, then each command before it is sent, and what came of it. Each line is
/// on the disk before anything goes on. `docs/formats.md` describes it.
class RestoreJournal : public LineListener {
public:
    /// Makes the file, in place of one that is there. Throws `RuntimeFailure` when it cannot be written.
    /// `begun`: the modules that are to be written, and what is known of those that a run before has left.
    RestoreJournal(Session& session, const std::string& path, const CutOffRestore& begun);
    RestoreJournal(const RestoreJournal&) = delete;
    RestoreJournal& operator=(const RestoreJournal&) = delete;

    /// Runs `write`, whose commands are for the module at `address`. Throws what it throws, and
    /// `RuntimeFailure` when the file cannot be written; the next command is not sent then.
    void Writing(int address, const std::function<void()>& write);
    /// The module was read back. `asWanted`: it has everything.
    void Done(int address, bool asWanted);
    /// The run came to its end: removes the file, or leaves in it what a run before has `left` and this one
    /// did not reach. Throws `RuntimeFailure` when that fails.
    void Finish(const CutOffRestore& left);

    void Passed(const LineTraffic& traffic) override;

private:
    void Write(const std::string& line);

    Session& session_;
    std::string path_;
    std::unique_ptr<AppendFile> file_;
    int address_ = -1;    // of the module being written
    std::string failure_; // of a line that could not be written when nothing may be thrown
};

/// Reads the journal at a path; nothing when there is none. What was cut off in the middle of a line is
/// passed over. Throws `RuntimeFailure`, with the line, for anything else that is no journal.
std::optional<CutOffRestore> ReadJournal(const std::string& path);

/// In words: how far it came, and what is known of the module in work.
std::string CutOffText(const CutOffRestore& cutOff);

/// Forgets it. Throws `RuntimeFailure` when the file cannot be removed.
void DiscardJournal(const std::string& path);

} // namespace kavro
