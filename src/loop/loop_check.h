#pragma once

#include "loop/change_watch.h"
#include "loop/loop_module.h"
#include "loop/loop_reading.h"
#include "loop/loop_results.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// What a loop check is made of.
struct LoopPlan {
    std::string Path; ///< of the file that keeps it (`LoopCheckPath`)
    LineFile File;
    LoopRecord Record;
    bool Drives = false;              ///< the user has agreed to outputs being driven
    std::string Person{};             ///< who checks
    std::function<std::string()> Now; ///< the time, as `LoopResult::Time`
};

/// What there is to be seen of the channel in work.
enum class LoopMood : std::uint8_t {
    Waiting, ///< for a change, or for the module
    Moving,  ///< it has changed, and still does
    Noticed, ///< it has changed and stays, or the output is driven
    Trouble, ///< no value came
};

/// The channel in work as it is shown; texts for the user.
struct LoopView {
    LoopMood Mood = LoopMood::Waiting;
    std::string Value = "-"; ///< "+05.012 V"
    std::string Notice{};    ///< what became of it
    std::string Todo{};      ///< what is to be done
};

/// Goes through the channels of a line, one after the other: watches an input until its signal changes,
/// drives an output step by step. What the user says is on the disk before it goes on; what stands at an
/// output is, before it is driven, and stays there until it was put back.
///
/// Every `Step` speaks to one module at most, but for putting back. What it throws, an `Interruption` too,
/// leaves everything so that the next step goes on.
class LoopCheck {
public:
    /// Outputs are skipped when the plan does not drive them; that is kept at once. Throws `RuntimeFailure`
    /// when it cannot be.
    LoopCheck(Session& session, LoopPlan plan);
    LoopCheck(const LoopCheck&) = delete;
    LoopCheck& operator=(const LoopCheck&) = delete;

    const LoopRecord& Record() const { return plan_.Record; }
    const LoopView& View() const { return view_; }
    /// Entry in work; the number of entries when each has a result.
    int Current() const { return current_; }
    bool Over() const { return current_ >= static_cast<int>(plan_.Record.Entries.size()); }
    const LoopEntry& Entry() const { return plan_.Record.Entries.at(static_cast<std::size_t>(current_)); }

    /// What was seen is as it should be: the next step of an output, or the channel has passed. Nothing while
    /// there is no value, which the view says.
    void Pass();
    void Fail() { Conclude(LoopOutcome::Fail); }
    void Skip() { Conclude(LoopOutcome::Skip); }
    /// Goes to the entry before, in their order.
    void Back() { GoTo(current_ - 1); }
    /// Begins with the channel in work again.
    void Again() { GoTo(current_); }
    void GoTo(int entry);
    /// What the user has to say of the channel in work.
    void SetNote(const std::string& note);

    /// Puts back what is due, then reads the channel in work, or drives it. `session` has its own list,
    /// within a `LineWorkScope`.
    void Step(Session& session);
    /// The port has failed, so that nothing is known of the channel until the next step. `why`: a sentence.
    void Lost(const std::string& why);
    /// Puts back every output that is driven; true when none is left. For the end. Throws `RuntimeFailure`
    /// behind the last one, when the port failed or it cannot be kept that they are back.
    bool PutAllBack(Session& session);
    /// Whether no output is driven, and the file says so: there is nothing for `PutAllBack`.
    bool Settled() const { return plan_.Record.Standing.empty() && !forgotten_; }
    /// "TV-3 (was 4.000)" of each output that could not be put back so far; that is tried again.
    std::vector<std::string> NotPutBack() const;

private:
    void Conclude(LoopOutcome outcome);
    void GoOn();
    void Save();
    std::vector<std::string> Values() const;
    void ShowTodo();
    void Tell(LoopMood mood, const std::string& value, const std::string& notice);
    void Trouble(const std::string& text);
    void StepInput(Session& session);
    void TellInput(LoopKind kind);
    void StepOutput(Session& session);
    bool Drive(Session& session, const NamedOutput& output);
    void ReadBack(Session& session, const NamedOutput& output);
    void KeepStanding(const StandingOutput& standing);
    void Forget(const LoopPoint& point);
    bool PutBack(Session& session, const StandingOutput& standing);
    bool PutBackEach(Session& session, const std::vector<StandingOutput>& standing);
    void PutBackDue(Session& session);
    bool InWork(const LoopPoint& point) const;
    const StandingOutput* StandingOf(const LoopPoint& point) const;

    Session* session_;
    LoopPlan plan_;
    LoopModule module_;
    LoopView view_;
    int current_ = 0;
    bool begun_ = false;              // the channel in work was read, or driven
    ChangeWatch watch_;               // of an input
    std::string lastText_;            // what was read, or driven, last
    std::vector<std::string> levels_; // of an output: all its steps, as `NamedOutput` takes them
    std::string unit_;                // of them
    std::size_t level_ = 0;           // step it is at
    std::vector<std::string> driven_; // steps that were seen, in words
    std::int64_t nextTry_ = 0;        // us, after trouble
    std::int64_t nextPutBack_ = 0;    // us, after one that failed
    std::int64_t refusedUntil_ = 0;   // us, as long as the refusal of a key is told
    bool forgotten_ = false;          // an output stands as before, and the file does not say so yet
};

} // namespace kavro
