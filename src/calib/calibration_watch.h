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

/// Watches a calibration: reads what is being calibrated, and keeps of each point what was found before it
/// was changed first and what was left when it was stored last. Sends nothing unless it is `On`.
///
/// A port that fails is no exception here: it is said in the view, and tried again later.
class CalibrationWatch {
public:
    /// For entry `index`; `target` says what is read at present.
    CalibrationWatch(Session& session, int index, std::function<CalibrationTarget()> target);

    bool On = false;
    /// What a meter of the user's own shows before the next button; comes before the module's reading.
    std::optional<double> Meter;

    /// Another step, or another output: what was read before does not count any more.
    void Begin();

    /// Reads once, when there is something to be read and no try is too soon after a failure of the port.
    /// False when the port has failed.
    bool Poll();

    /// To be called before the module is told to change anything: keeps what is found, which is read now if
    /// it was not yet. `stores`: what was left of this point before does not count any more.
    void BeforeChange(bool stores = true);
    /// To be called when it was told to store: the first reading at least `settleMs` from now is what is
    /// left.
    void AfterStore(Answer answer, int settleMs);
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
    };
    Kept& PointOf(const CalibrationTarget& target);
    void KeepLeft(const CalibrationTarget& target);
    std::string ShownUnit(const std::string& unit) const;

    Session& session_;
    const int index_;
    std::function<CalibrationTarget()> target_;
    RecentReadings recent_;
    Answer answer_ = Answer::Ok; // to the last question
    bool lost_ = false;          // the last question found no port
    std::int64_t nextTryMs_ = 0; // after such a failure
    std::vector<Kept> points_;
    std::optional<std::int64_t> leftDueMs_; // of the present point
    std::string started_;                   // UTC
};

} // namespace kavro
