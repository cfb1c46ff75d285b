#pragma once

#include "calib/calibration_commands.h"
#include "calib/calibration_view.h"
#include "calib/calibration_watch.h"
#include "map/session.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kavro {

/// What step 3 executes.
enum class CalibType : std::int16_t { Offset = 0, Span = 1, ColdJunction = 2 };

/// What the dialog shows; the texts are those it is designed with.
struct AdCalibrationView : CalibrationView {
    bool ChoicesShown = false;           ///< `OffsetBtn` and `SpanBtn`
    bool CJCChoiceShown = false;         ///< `CJCBtn`
    bool ReadingShown = false;           ///< `Reading`
    bool CJCShown = false;               ///< `Temperature`, `CJCInput` and their labels
    std::string Reading = "-4.345 mV";   ///< reference signal to apply
    std::string Temperature = "+25.3 C"; ///< of the cold junction; empty when it could not be read
};

/// The calibration of an analog input module in three steps: warm-up, choice, execution. Replies decide
/// nothing but what is told of them; a temperature alone must be one to be shown and corrected by. Every
/// function throws `RuntimeFailure` when the port fails; its button can then be pressed again.
class AdCalibration {
public:
    /// Step 1 for entry `index`; `wait` is called with the milliseconds to let pass.
    AdCalibration(Session& session, int index, std::function<void(int ms)> wait);

    const AdCalibrationView& View() const { return view_; }

    /// Target temperature as typed, with the decimal separator of the user's locale. Becomes "0" when it is
    /// executed and is not a number.
    std::string CJCInput;

    /// What the module said last, and what Execute will do where that is not plain.
    std::string Foot() const;

    void OffsetBtn_Click() { Choose(CalibType::Offset); }
    void SpanBtn_Click() { Choose(CalibType::Span); }
    void CJCBtn_Click() { Choose(CalibType::ColdJunction); }
    void BackBtn_Click();
    /// The next step; at step 3 it executes and stays there.
    void NextBtn_Click();

    /// What is read meanwhile, of channel 0 or the cold junction; nothing unless it is switched on.
    CalibrationWatch& Watch() { return watch_; }
    ReadingView Readings() const;
    /// What has been done so far: aborted when nothing was stored, when the last execution did not come to
    /// its end, and when the program is being ended.
    CalibrationRecord Record() const;

private:
    CalibrationTarget Target() const;
    std::string ReferenceText() const;
    std::string ReplacesText() const;
    void Choose(CalibType type);
    void ShowStep();
    void ShowExecution();
    void Execute();
    void ExecuteChosen();
    void Store(const std::string& tail, const std::string& what);
    void ExecuteColdJunction();
    Answer Ask(const std::string& tail, const std::string& what, const std::string& done);
    std::optional<double> ReadColdJunction();
    void Correct(const std::string& counts, bool clears);
    void ShowColdJunction();

    Session& session_;
    const int index_;
    std::function<void(int ms)> wait_;
    AdCalibrationView view_;
    CalibType calibType_ = CalibType::Offset;
    CalibrationWatch watch_;
    std::string told_;    // of the last button
    bool zeroed_ = false; // the last target was no number and has become 0

    std::array<std::string, 3> executed_; // by type: what was told of the last execution, empty when none
    const char* doubt_ = "";              // about it
    bool midway_ = false;                 // the last one was broken off
    bool cleared_ = false;                // the cold junction has got no correction, as was asked for
};

/// The correction that raises the cold-junction temperature by `difference` degrees: sign and counts of
/// 0.0153 degrees, to nearest and halves to even, as four or more hexadecimal digits ("+0041"). Throws
/// `RuntimeFailure` when the counts do not fit into 32 bits.
std::string CJCCorrection(float difference);

} // namespace kavro
