#pragma once

#include "calib/calibration_reading.h"
#include "calib/calibration_record.h"
#include "calib/calibration_target.h"
#include "map/session.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// What a guide shows of the present reading; texts are empty where there is nothing to say.
struct ReadingView {
    std::string Reading{};    ///< "+0.040 V"
    std::string State{};      ///< "stable", "not stable yet", "no reply"
    bool Stable = false;      ///< else `State` is a waiting or a fault
    bool Faulty = false;      ///< the last question brought no reading
    std::string Error{};      ///< "+0.040 V (+0.400 % of full scale)", or why there is none
    std::string Replaces{};   ///< what the next button would replace
    std::string Reversible{}; ///< whether the step can be undone
};

/// "+8 steps" of trimming.
std::string StepsText(int trims);

/// Watches a calibration: reads what is being calibrated, and keeps of each point what was found before it
/// was changed first, or when its step was left without a change, and what was left when it was stored last.
/// Sends nothing unless it is `On`.
///
/// A port that fails is no exception here: it is said in the view, and tried again later, as a silent module
/// is: both block who asks.
class CalibrationWatch {
public:
    /// For entry `index`; `target` says what is read at present.
    CalibrationWatch(Session& session, int index, std::function<CalibrationTarget()> target);

    bool On = false;
    /// What a meter of the user's own shows before the next button; comes before the module's reading.
    std::optional<CalibrationReading> Meter;

    /// Another step, or another output: what was read before does not count any more, but as what was found
    /// where it had come to rest.
    void Begin();

    /// Reads once, when there is something to be read and no try is too soon after the port failed or the
    /// module was silent. False when the port has failed.
    bool Poll();
    /// Lets the next reading be tried whatever came of the last one.
    void TryAgain() { nextTryMs_ = 0; }

    /// To be called before the module is told to change anything: keeps what is found, which is read now if
    /// it was not yet. `stores`: what was left of this point before does not count any more.
    void BeforeChange(bool stores = true);
    /// Tells it to store by `ask`, which may throw: the first reading at least `settleMs` after its answer is
    /// what is left.
    Answer Store(const std::function<Answer()>& ask, int settleMs);
    /// To be called when it was trimmed by so many steps.
    void Trimmed(int steps);
    /// Forgets the present point, which has become none.
    void Drop();
    /// Milliseconds until what is left can be read; none when nothing is waited for.
    std::optional<int> LeftIsDue() const;

    const CalibrationReading* Last() const { return recent_.Last(); }
    /// The error of the last reading; none without a signal or a reading.
    std::optional<double> Error() const;
    std::string ErrorText(double error) const;
    ReadingView View() const;

    bool AnyStored() const;
    /// What came of storing each point: "4 mA: stored. 20 mA: no reply. "
    std::string StoredText() const;
    /// The facts of the module and what was kept; what is left is for the guide to say. Asks the module for
    /// its firmware.
    CalibrationRecord Record() const;

private:
    struct Kept {
        CalibrationPoint Point;
        bool FoundByMeter = false, LeftByMeter = false;
        std::string Outcome = "not stored";
        int Trims = 0; // since it was stored
    };
    struct Rested {
        CalibrationTarget Target;
        CalibrationReading Reading;
    };
    Kept& PointOf(const CalibrationTarget& target);
    void KeepFound(Kept& kept, const CalibrationTarget& target);
    void Pause(std::int64_t begin);
    std::vector<Kept> Points() const;
    std::string ShownUnit(const std::string& unit) const;

    Session& session_;
    const int index_;
    std::function<CalibrationTarget()> target_;
    RecentReadings recent_;
    Answer answer_ = Answer::Ok; // to the last question
    bool lost_ = false;          // the last question found no port
    int failures_ = 0;           // in a row: no port, or no reply
    std::int64_t nextTryMs_ = 0; // after a failure
    std::vector<Kept> points_;
    std::optional<Rested> rested_;          // what has come to rest last, of the present step
    std::optional<std::int64_t> leftDueMs_; // of the present point
    std::string started_;                   // UTC
};

} // namespace kavro
