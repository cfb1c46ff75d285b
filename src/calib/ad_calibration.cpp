#include "calib/ad_calibration.h"

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
constexpr double DegreesPerCount = 0.0153;
constexpr const char* ClearsText = "While the target is not a number, Execute clears the present correction.";
constexpr const char* GoneText = "The old correction is gone.";
constexpr const char* NoneMadeText = " No new correction is made.";
constexpr const char* ZeroText = "The target is now 0: Execute would correct to 0 \u00b0C.";

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

// Reference signals of the range codes `First` to `Last`.
struct Reference {
    std::int16_t First, Last;
    const char* Zero;
    const char* Span;
};

// "0 mV" of the ranges 8 to 10, and of both in range 7, are meant as they stand.
constexpr Reference References[] = {
    {0, 0, "0 mV", "+15 mV"},        {1, 1, "0 mV", "+50 mV"},        {2, 2, "0 mV", "+100 mV"},
    {3, 3, "0 mV", "+500 mV"},       {4, 4, "0 V", "+1 V"},           {5, 5, "0 V", "+2.5 V"},
    {6, 6, "0 mA", "+20 mA"},        {7, 7, "0 mV", "0 mV"},          {8, 8, "0 mV", "+10 V"},
    {9, 9, "0 mV", "+5 V"},          {10, 10, "0 mV", "+1 V"},        {11, 11, "0 mV", "+500 mV"},
    {12, 12, "0 mV", "+150 mV"},     {13, 13, "0 mA", "+20 mA"},      {14, 14, "0 mV", "+50 mV"},
    {15, 15, "0 mV", "+55 mV"},      {16, 16, "0 mV", "+30 mV"},      {17, 17, "0 mV", "+78 mV"},
    {18, 18, "0 mV", "+25 mV"},      {19, 19, "0 mV", "+19.5 mV"},    {20, 20, "0 mV", "+15 mV"},
    {21, 21, "0 mV", "+55 mV"},      {22, 22, "0 mV", "+39 mV"},      {32, 34, "50 ohms", "200 ohms"},
    {35, 35, "50 ohms", "350 ohms"}, {36, 38, "50 ohms", "200 ohms"}, {39, 40, "50 ohms", "350 ohms"},
    {41, 41, "50 ohms", "200 ohms"}, {42, 42, "0 ohms", "60 ohms"},
};

Reference ReferenceOf(std::int16_t range) {
    const auto found = std::ranges::find_if(
        References, [range](const Reference& row) { return row.First <= range && range <= row.Last; });
    return found == std::end(References) ? Reference{range, range, "", ""} : *found;
}

bool IsDecimalNumber(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-'))
        text.remove_prefix(1);
    return text.find_first_not_of("0123456789.") == std::string_view::npos &&
           text.find_first_of("0123456789") != std::string_view::npos && std::ranges::count(text, '.') <= 1;
}

// The whole text as a number, infinite when it is too large; nothing when it is not one.
std::optional<float> TypedNumber(const std::string& text, const std::string& separator) {
    std::string number = Trim(text);
    NormalizeDecimalPoint(number, separator);
    if (!IsDecimalNumber(number))
        return std::nullopt;
    using Limits = std::numeric_limits<float>;
    const double value = LeadingNumber(number).value_or(Limits::infinity());
    return std::abs(value) <= Limits::max() ? static_cast<float>(value) : Limits::infinity();
}

} // namespace

std::string CJCCorrection(float difference) {
    const double counts = std::nearbyint(std::abs(difference) / DegreesPerCount);
    if (!(counts <= std::numeric_limits<std::int32_t>::max()))
        throw RuntimeFailure("Overflow: the target temperature is too far from the measured one. Enter a "
                             "temperature near the one that is shown.");
    return (difference < 0 ? "-" : "+") + ToHex(static_cast<std::int32_t>(counts), 4);
}

AdCalibration::AdCalibration(Session& session, int index, std::function<void(int ms)> wait)
    : session_(session), index_(index), wait_(std::move(wait)) {
    ShowStep();
}

std::string AdCalibration::Foot() const {
    if (!view_.CJCShown)
        return told_;
    const auto target = TypedNumber(CJCInput, session_.DecimalSeparator);
    const char* next = !target ? ClearsText : zeroed_ && *target == 0 ? ZeroText : "";
    return told_ + (*next && !told_.empty() ? " " : "") + next;
}

void AdCalibration::ShowStep() {
    told_.clear();
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
    const Reference reference = ReferenceOf(session_.ModuleTable[index_].InputRange);
    view_.ReadingShown = true;
    view_.Reading = calibType_ == CalibType::Offset ? reference.Zero : reference.Span;
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
    switch (calibType_) {
    case CalibType::Offset:
        Ask("1", "Offset calibration", "stored");
        return;
    case CalibType::Span:
        Ask("0", "Span calibration", "stored");
        return;
    case CalibType::ColdJunction:
        return ExecuteColdJunction();
    }
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
        difference = *target - static_cast<float>(*measured);
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
    if (Ask("9" + counts, what, clears ? "cleared" : "stored") == Answer::Ok)
        told_.erase(0, gone); // it is not missed now
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
