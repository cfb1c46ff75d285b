#include "calib/da_calibration.h"

#include "link/models.h"
#include "link/number_text.h"
#include "link/text.h"
#include "map/module_access.h"

namespace kavro {

namespace {

constexpr std::size_t ConfigReplyLength = 9; // "!AATTCCFF"
constexpr std::size_t ConfigLength = 6;
constexpr std::int16_t FirstOutputStep = 4;
constexpr std::int16_t LastStep = 5;
constexpr double FullScale = 20; // mA, of the range that it is set up with
constexpr const char* NotSetUpText =
    "The module is not known to be set up for calibration: nothing that it stores here can be trusted.";
constexpr const char* InterruptedText = "none: the next button begins this step anew";
constexpr const char* NoNumberText = "What the meter shows is no number: correct it. Nothing was sent.";

constexpr const char* GuideTexts[LastStep] = {
    "Apply power to the analog output module and let it warm up for about 30 minutes.",
    "Assure that the module is correctly installed and its configuration is in concord with your "
    "specification and matches the output range you want to calibrate.",
    "Connect either a 5-digit milliammeter or voltmeter with a shunt resister (250 Ohms, 0.1%, and 10ppm) to "
    "the screw terminals of the module.",
    "Check the actual output value at the module's terminals. If it does not equal 4mA, use the 'Trim Up' or "
    "'Trim Down' button to change the actual output. Trim the module until the milliammeter indicates "
    "exactly 4mA or the voltage meter indicates exactly 1V.",
    "Check the actual output value at the module's terminals. If it does not equal 20mA, use the 'Trim Up' "
    "or 'Trim Down' button to change the actual output. Trim the module until the milliammeter indicates "
    "exactly 20mA or the voltage meter indicates exactly 5V.",
};

constexpr const char* SetUpReversible =
    "Reversible: the module is set up for calibration; Exit gives it its own configuration back.";
constexpr const char* StepsReversible[LastStep] = {
    SetUpReversible,
    SetUpReversible,
    SetUpReversible,
    "Trims are reversible by trimming back. Next is not: it replaces the module's calibration at 4 mA.",
    "Trims are reversible by trimming back. Done is not: it replaces the module's calibration at 20 mA.",
};

} // namespace

DaCalibration::DaCalibration(Session& session, int index)
    : session_(session), index_(index), watch_(session, index, [this] { return Target(); }) {
    configRead_ = Ask('$', "2", "Configuration", {}) == Answer::Ok;
    const Line& line = session_.Line;
    if (line.ReplyIs('!') && line.ReplyText.size() == ConfigReplyLength)
        savedConfig_ = Middle(line.ReplyText, 4, ConfigLength);
    ShowStep();
}

void DaCalibration::SetUp() {
    if (!MustRestore())
        return;
    setUp_ = false;
    const std::string config = "30" + Middle(savedConfig_, 3, 2) + "00";
    const Answer answer =
        Ask({'%', Configuring(config), "Set-up for calibration", "done", {}}, session_.Line.LongReplyTimeout);
    setUp_ = answer == Answer::Ok && configRead_;
}

std::string DaCalibration::Foot() const {
    if (setUp_)
        return told_;
    return std::string("\u26a0 ") + NotSetUpText + (told_.empty() ? "" : " " + told_);
}

void DaCalibration::ExitBtn_Click() {
    told_.clear();
    GiveBack("");
}

void DaCalibration::GiveBack(const char* done) {
    if (!MustRestore())
        return;
    const std::string how = "The command " + RestoringCommand() + " restores it.";
    const Answer answer =
        Ask({'%', Configuring(savedConfig_), "Own configuration", done, how}, session_.Line.LongReplyTimeout);
    givenBack_ = "Own configuration " + savedConfig_ + ": " +
                 (answer == Answer::Ok ? "restored." : AnswerText(answer) + (". " + how));
    savedConfig_.clear();
}

CalibrationTarget DaCalibration::Target() const {
    if (view_.StepNo < FirstOutputStep)
        return {};
    const bool low = view_.StepNo == FirstOutputStep;
    const double current = low ? 4 : 20;
    const bool told = RowOfModel(session_.ModuleTable[index_].Model).Kind == ModelKind::SingleOutput;
    CalibrationTarget target = {.What = low ? "4 mA" : "20 mA",
                                .Unit = "mA",
                                .FullScale = FullScale,
                                .Applied = current,
                                .AppliedUnit = "mA",
                                .Doubt = DoubtText()};
    if (target.Doubt.empty())
        target.Signal = current;
    if (!told)
        target.Remark = "none: this model does not measure its output";
    else if (interrupted_)
        target.Remark = InterruptedText;
    else if (!target.Doubt.empty())
        target.Remark = "none: " + target.Doubt;
    else
        target.Reading = ReadingOf::Terminals;
    return target;
}

// Why the output need not be what the step is about; empty when it is.
const char* DaCalibration::DoubtText() const {
    if (!setUp_)
        return "the module is not known to be set up for calibration";
    return outputSet_ ? "" : "the module is not known to have set this output";
}

// What the next store would replace.
std::string DaCalibration::ReplacesText() const {
    if (view_.StepNo < FirstOutputStep)
        return {};
    return "Trimmed since the output was set: " + StepsText(trims_) + ". " +
           (view_.StepNo == LastStep ? "Done" : "Next") + " stores what the terminals carry now.";
}

ReadingView DaCalibration::Readings() const {
    ReadingView view = watch_.View();
    view.Replaces = ReplacesText();
    view.Reversible = StepsReversible[view_.StepNo - 1];
    return view;
}

void DaCalibration::Poll() {
    if (!watch_.Poll())
        interrupted_ = true;
}

std::string DaCalibration::LeftAsText() const {
    const std::string warning = setUp_ ? "" : std::string(NotSetUpText) + " ";
    if (!givenBack_.empty())
        return warning + givenBack_;
    return warning + (MustRestore()
                          ? "Still set up for calibration. The command " + RestoringCommand() +
                                " restores its own configuration " + savedConfig_ + "."
                          : "Its configuration could not be read, so it was not set up for calibration.");
}

CalibrationRecord DaCalibration::Record() const {
    CalibrationRecord record = watch_.Record();
    record.FullScale = FullScale;
    record.Unit = "mA";
    record.Aborted = !done_;
    record.LeftAs = watch_.StoredText() + LeftAsText();
    return record;
}

// For one button. False, and told, when something else than a number was typed.
bool DaCalibration::TakeMeter() {
    std::string typed = kavro::Trim(MeterInput);
    NormalizeDecimalPoint(typed, session_.DecimalSeparator);
    const auto value = PlainNumber(typed);
    watch_.Meter.reset();
    if (value) {
        watch_.Meter = {Answer::Ok, *value, StepOfDigits(typed)};
    } else if (!typed.empty()) {
        told_ = NoNumberText;
        return false;
    }
    MeterInput.clear();
    return true;
}

void DaCalibration::SetOutput(const char* current, const char* what) {
    outputSet_ = false;
    outputSet_ = Ask('#', current, what, "set") == Answer::Ok;
}

void DaCalibration::ShowStep() {
    watch_.Begin();
    trims_ = 0;
    view_.GuideText = GuideTexts[view_.StepNo - 1];
    switch (view_.StepNo) {
    case 1:
        view_.BackEnabled = false;
        break;
    case 2:
        view_.BackEnabled = true;
        break;
    case 3:
        view_.TrimShown = false;
        break;
    case 4:
        view_.TrimShown = true;
        view_.NextCaption = "Next >"; // after Back, where it goes on to step 5 and does not end anything
        SetOutput("04.000", "Output of 4 mA");
        break;
    default:
        view_.NextCaption = "Done";
        SetOutput("20.000", "Output of 20 mA");
    }
}

// True when a failure of the port had interrupted a step with an output, which is then begun anew.
bool DaCalibration::TakeUp() {
    if (!interrupted_)
        return false;
    SetUp();
    ShowStep();
    return view_.StepNo >= FirstOutputStep;
}

void DaCalibration::BackBtn_Click() {
    told_.clear();
    if (interrupted_)
        SetUp();
    --view_.StepNo;
    ShowStep();
}

bool DaCalibration::NextBtn_Click() {
    told_.clear();
    if (TakeUp())
        return false;
    if (view_.StepNo == FirstOutputStep && !Store("0", "Calibration at 4 mA"))
        return false;
    if (view_.StepNo == LastStep && !Store("1", "Calibration at 20 mA"))
        return false;
    if (view_.StepNo == LastStep)
        return done_ = true;
    ++view_.StepNo;
    ShowStep();
    return false;
}

// False when nothing was sent.
bool DaCalibration::Store(const char* code, const char* what) {
    if (!TakeMeter())
        return false;
    watch_.BeforeChange();
    watch_.Store([&] { return Ask('$', code, what, "stored"); }, 0);
    if (watch_.LeftIsDue()) {
        watch_.TryAgain();
        Poll(); // before the next step drives another output
    }
    return true;
}

void DaCalibration::Trim(const char* code, const char* name, int step) {
    told_.clear();
    if (TakeUp())
        return;
    if (!TakeMeter())
        return;
    watch_.BeforeChange(false);
    if (Ask('$', code, name, "done") != Answer::Ok)
        return;
    trims_ += step;
    watch_.Trimmed(step);
}

// A module in its initialisation state is spoken to at 00, but keeps an address of its own.
std::string DaCalibration::Configuring(const std::string& config) const {
    return ToHex(session_.ModuleTable[index_].Address, 2) + config;
}

std::string DaCalibration::RestoringCommand() const {
    return CommandFor(session_, index_, '%', Configuring(savedConfig_));
}

Answer DaCalibration::Ask(char lead, const std::string& tail, const std::string& what,
                          const std::string& done) {
    return Ask({lead, tail, what, done, {}}, session_.Line.ReplyTimeout);
}

Answer DaCalibration::Ask(const Question& question, int timeoutMs) {
    interrupted_ = true;
    try {
        const Answer answer = AskCalibration(session_, index_, question, timeoutMs, told_);
        interrupted_ = false;
        return answer;
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(failure.what() + WhatToRestore());
    }
}

std::string DaCalibration::WhatToRestore() const {
    if (!MustRestore())
        return {};
    return "\n\nThe module is still set up for calibration. Its own configuration is " + savedConfig_ +
           "; the command " + RestoringCommand() + " restores it.";
}

} // namespace kavro
