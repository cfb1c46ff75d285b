#include "calib/ad_calibration.h"

#include "calib/calibration_target.h"
#include "link/codes.h"
#include "link/models.h"
#include "link/text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace kavro {

namespace {

constexpr int SettleMs = 1000; // after a cold-junction correction, until the module measures with it
constexpr int FreshMs = 1000;  // after an execution, until the module measures with what it has stored
constexpr double DegreesPerCount = 0.0153;
constexpr double FarthestTarget = 1000; // degrees; beyond, no count is foretold
constexpr const char* ClearsText = "While the target is not a number, Execute clears the present correction.";
constexpr const char* GoneText = "The old correction is gone.";
constexpr const char* NoneMadeText = " No new correction is made.";
constexpr const char* ZeroText = "The target is now 0: Execute would correct to 0 \u00b0C.";

constexpr const char* DoubtText = " Whether the module has done it is not known.";
constexpr const char* NotClearedText = "CJC correction: the port has failed.";
constexpr const char* BrokenText = " It was broken off in the middle.";
constexpr const char* NothingStoredText = "Nothing was stored: the module keeps the calibration that it had.";

constexpr const char* GuideTexts[] = {
    "Apply power to the analog input module and let it warm up for about 30 minutes.",
    "Assure that the module is correctly installed and the input range shown above is what you want to "
    "calibrate.",
};

constexpr const char* ResistanceGuide =
    "Apply the resistance shown below to module's channel-0, SENSE0+, and SENSE0- terminals, as a 2-wire RTD "
    "wiring, then press 'Execute' button.";
constexpr const char* InputGuide = "Use a precision voltage source to apply the voltage shown below to the "
                                   "module's +IN and -IN terminals, then press 'Execute' button.";
constexpr const char* ChannelGuide = "Use a precision voltage source to apply the voltage shown below to the "
                                     "module's Vin0+ and Vin0- terminals, then press 'Execute' button.";

const char* GuideOf(const ModelRow& model) {
    if ((model.Analog.Formats >> Ohms & 1U) != 0)
        return ResistanceGuide;
    if (model.Kind == ModelKind::MultiInput)
        return ChannelGuide;
    return model.Kind == ModelKind::AlarmInput ? InputGuide : "";
}

bool IsDecimalNumber(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-'))
        text.remove_prefix(1);
    return text.find_first_not_of("0123456789.") == std::string_view::npos &&
           text.find_first_of("0123456789") != std::string_view::npos && std::ranges::count(text, '.') <= 1;
}

// The whole text as a number, infinite when it is too large; nothing when it is not one.
std::optional<double> TypedNumber(const std::string& text, const std::string& separator) {
    std::string number = Trim(text);
    NormalizeDecimalPoint(number, separator);
    if (!IsDecimalNumber(number))
        return std::nullopt;
    return LeadingNumber(number).value_or(std::numeric_limits<double>::infinity());
}

float SinglePrecision(double value) {
    using Limits = std::numeric_limits<float>;
    return std::abs(value) <= Limits::max() ? static_cast<float>(value) : Limits::infinity();
}

// By step, and at the last one by type.
constexpr const char* StepsReversible[] = {"Reversible: nothing is sent to the module but questions.",
                                           "Reversible: nothing is stored in this step."};
constexpr const char* TypesReversible[] = {
    "Not reversible: Execute replaces the zero of the module. Only another calibration changes it again.",
    "Not reversible: Execute replaces the span of the module. Only another calibration changes it again.",
    "Not reversible: Execute clears the present correction, which no module tells, before it makes a new "
    "one.",
};

} // namespace

std::string CJCCorrection(float difference) {
    const double counts = std::nearbyint(std::abs(difference) / DegreesPerCount);
    if (!(counts <= std::numeric_limits<std::int32_t>::max()))
        throw RuntimeFailure("Overflow: the target temperature is too far from the measured one. Enter a "
                             "temperature near the one that is shown.");
    return (difference < 0 ? "-" : "+") + ToHex(static_cast<std::int32_t>(counts), 4);
}

AdCalibration::AdCalibration(Session& session, int index, std::function<void(int ms)> wait)
    : session_(session), index_(index), wait_(std::move(wait)),
      watch_(session, index, [this] { return Target(); }) {
    ShowStep();
}

std::string AdCalibration::Foot() const {
    if (!view_.CJCShown)
        return told_;
    const auto target = TypedNumber(CJCInput, session_.DecimalSeparator);
    const char* next = !target ? ClearsText : zeroed_ && *target == 0 ? ZeroText : "";
    return told_ + (*next && !told_.empty() ? " " : "") + next;
}

CalibrationTarget AdCalibration::Target() const {
    const ModuleRecord& record = session_.ModuleTable[index_];
    if (view_.StepNo == 1)
        return {};
    if (view_.StepNo == 2)
        return InputTarget(record);
    if (calibType_ != CalibType::ColdJunction)
        return InputTarget(record, calibType_ == CalibType::Offset ? "Offset" : "Span", ReferenceText());
    const auto typed = TypedNumber(CJCInput, session_.DecimalSeparator);
    return ColdJunctionTarget(record, typed && std::isfinite(*typed) ? typed : std::nullopt);
}

std::string AdCalibration::ReferenceText() const {
    const ReferenceTexts texts = ReferenceOf(session_.ModuleTable[index_].InputRange);
    return calibType_ == CalibType::Offset ? texts.Zero : texts.Span;
}

// What Execute would replace.
std::string AdCalibration::ReplacesText() const {
    const auto error = watch_.Error();
    if (view_.StepNo < 3 || !watch_.Last())
        return {};
    if (calibType_ == CalibType::ColdJunction)
        return error && std::abs(*error) < FarthestTarget
                   ? "Execute clears the correction, measures anew, and sends " +
                         CJCCorrection(SinglePrecision(-*error)) + " (counts of " +
                         ShownInSteps(DegreesPerCount, 0.0001, false, session_.DecimalSeparator) +
                         " \u00b0C) if there is none now."
                   : "";
    if (!error)
        return "Execute replaces what the module makes of the signal now.";
    return std::abs(*error) < watch_.Last()->Step / 2
               ? "The module reads no error that Execute could take away."
               : "Execute takes away the error of " + watch_.ErrorText(*error) +
                     (watch_.View().Stable ? "." : ", if the signal is applied.");
}

ReadingView AdCalibration::Readings() const {
    ReadingView view = watch_.View();
    view.Replaces = ReplacesText();
    view.Reversible = view_.StepNo < 3 ? StepsReversible[view_.StepNo - 1]
                                       : TypesReversible[static_cast<std::size_t>(calibType_)];
    return view;
}

CalibrationRecord AdCalibration::Record() const {
    CalibrationRecord record = watch_.Record();
    const CalibrationTarget input = InputTarget(session_.ModuleTable[index_]);
    record.FullScale = input.FullScale;
    record.Unit = input.Unit;
    record.Aborted = midway_ || session_.Ending || (!watch_.AnyStored() && !cleared_);
    for (const std::string& executed : executed_)
        if (!executed.empty())
            record.LeftAs += (record.LeftAs.empty() ? "" : " ") + executed;
    if (record.LeftAs.empty())
        record.LeftAs = NothingStoredText;
    return record;
}

void AdCalibration::ShowStep() {
    told_.clear();
    watch_.Begin();
    const ModelRow& model = RowOfModel(session_.ModuleTable[index_].Model);
    switch (view_.StepNo) {
    case 1:
        view_.GuideText = GuideTexts[0];
        view_.BackEnabled = false;
        view_.NextEnabled = true;
        view_.ChoicesShown = view_.CJCChoiceShown = false;
        break;
    case 2:
        view_.GuideText = GuideTexts[1];
        view_.GuideShown = true;
        view_.CJCShown = view_.ReadingShown = false;
        view_.BackEnabled = true;
        view_.NextEnabled = false;
        view_.ChoicesShown = true;
        view_.CJCChoiceShown = model.Analog.ColdJunction;
        break;
    default:
        view_.GuideText = GuideOf(model);
        view_.NextEnabled = true;
        view_.NextCaption = "Execute"; // never set back: steps 1 and 2 keep it after Back; this is meant
        view_.ChoicesShown = view_.CJCChoiceShown = false;
        ShowExecution();
    }
}

void AdCalibration::ShowExecution() {
    if (calibType_ == CalibType::ColdJunction) {
        view_.GuideShown = view_.ReadingShown = false;
        view_.CJCShown = true;
        ShowColdJunction();
        return;
    }
    view_.ReadingShown = true;
    view_.Reading = ReferenceText();
}

void AdCalibration::Choose(CalibType type) {
    calibType_ = type;
    ++view_.StepNo;
    ShowStep();
}

void AdCalibration::BackBtn_Click() {
    --view_.StepNo;
    ShowStep();
}

void AdCalibration::NextBtn_Click() {
    if (view_.StepNo == 3)
        return Execute();
    ++view_.StepNo;
    ShowStep();
}

void AdCalibration::Execute() {
    told_.clear();
    if (Target().Signal || calibType_ != CalibType::ColdJunction)
        watch_.BeforeChange();
    else
        watch_.Drop(); // a correction that is cleared is measured against nothing
    std::string& executed = executed_[static_cast<std::size_t>(calibType_)];
    midway_ = true;
    doubt_ = "";
    try {
        ExecuteChosen();
    } catch (const RuntimeFailure&) {
        executed = (told_.empty() ? NotClearedText : told_) + BrokenText;
        throw;
    }
    midway_ = false;
    executed = told_ + doubt_;
}

void AdCalibration::ExecuteChosen() {
    switch (calibType_) {
    case CalibType::Offset:
        return Store("1", "Offset calibration");
    case CalibType::Span:
        return Store("0", "Span calibration");
    case CalibType::ColdJunction:
        return ExecuteColdJunction();
    }
}

void AdCalibration::Store(const std::string& tail, const std::string& what) {
    const Answer answer = watch_.Store([&] { return Ask(tail, what, "stored"); }, FreshMs);
    if (answer == Answer::NoReply || answer == Answer::Garbled)
        doubt_ = DoubtText;
}

void AdCalibration::ExecuteColdJunction() {
    SendCalibration(session_, index_, '$', "9+0000");
    told_ = GoneText; // whatever happens from here on
    wait_(SettleMs);
    const auto measured = ReadColdJunction();
    if (!measured) { // there is nothing to correct by
        view_.Temperature.clear();
        told_ += NoneMadeText;
        return;
    }
    float difference = 0;
    const auto target = TypedNumber(CJCInput, session_.DecimalSeparator);
    if (target)
        difference = SinglePrecision(*target) - static_cast<float>(*measured);
    else
        CJCInput = "0";
    zeroed_ = !target;
    Correct(CJCCorrection(difference), !target);
    wait_(SettleMs);
    ShowColdJunction();
}

void AdCalibration::Correct(const std::string& counts, bool clears) {
    const std::size_t gone = told_.size() + 1;
    const std::string what = "CJC correction" + (clears ? std::string() : " " + counts);
    const auto ask = [&] { return Ask("9" + counts, what, clears ? "cleared" : "stored"); };
    const Answer answer = clears ? ask() : watch_.Store(ask, FreshMs);
    if (answer == Answer::Ok)
        told_.erase(0, gone); // it is not missed now
    cleared_ = clears && answer == Answer::Ok;
}

Answer AdCalibration::Ask(const std::string& tail, const std::string& what, const std::string& done) {
    return AskCalibration(session_, index_, {'$', tail, what, done, {}}, session_.Line.ReplyTimeout, told_);
}

std::optional<double> AdCalibration::ReadColdJunction() {
    if (Ask("3", "CJC temperature", {}) != Answer::Ok)
        return std::nullopt;
    return LeadingNumber(Middle(session_.Line.ReplyText, 2));
}

void AdCalibration::ShowColdJunction() {
    view_.Temperature.clear(); // a port that fails must not leave the reading before
    if (const auto temperature = ReadColdJunction())
        view_.Temperature = ShownNumber(FormatNumber(*temperature, 0, 1), session_.DecimalSeparator);
}

} // namespace kavro
