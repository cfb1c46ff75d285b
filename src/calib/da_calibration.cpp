#include "calib/da_calibration.h"

#include "calib/calibration_commands.h"
#include "link/text.h"

namespace kavro {

namespace {

constexpr std::size_t ConfigReplyLength = 9; // "!AATTCCFF"
constexpr std::size_t ConfigLength = 6;
constexpr std::int16_t FirstOutputStep = 4;
constexpr std::int16_t LastStep = 5;

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

} // namespace

DaCalibration::DaCalibration(Session& session, int index) : session_(session), index_(index) {
    Exchange('$', "2");
    const Line& line = session_.Line;
    if (line.ReplyIs('!') && line.ReplyText.size() == ConfigReplyLength)
        savedConfig_ = Middle(line.ReplyText, 4, ConfigLength);
    ShowStep();
}

void DaCalibration::SetUp() {
    if (MustRestore())
        Exchange(Configure("30" + Middle(savedConfig_, 3, 2) + "00"), session_.Line.LongReplyTimeout);
}

void DaCalibration::Restore() {
    if (!MustRestore())
        return;
    Exchange(Configure(savedConfig_), session_.Line.LongReplyTimeout);
    savedConfig_.clear();
}

void DaCalibration::ShowStep() {
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
        Exchange('#', "04.000");
        break;
    default:
        view_.NextCaption = "Done";
        Exchange('#', "20.000");
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
    if (interrupted_)
        SetUp();
    --view_.StepNo;
    ShowStep();
}

bool DaCalibration::NextBtn_Click() {
    if (TakeUp())
        return false;
    if (view_.StepNo >= FirstOutputStep)
        Exchange('$', view_.StepNo == FirstOutputStep ? "0" : "1");
    if (view_.StepNo == LastStep)
        return true;
    ++view_.StepNo;
    ShowStep();
    return false;
}

void DaCalibration::Trim(const char* code) {
    if (!TakeUp())
        Exchange('$', code);
}

// A module in its initialisation state is spoken to at 00, but keeps an address of its own.
std::string DaCalibration::Configure(const std::string& config) const {
    const std::string ownAddress = ToHex(session_.ModuleTable[index_].Address, 2);
    return CalibrationCommand(session_, index_, '%', ownAddress + config);
}

void DaCalibration::Exchange(char lead, const std::string& code) {
    Exchange(CalibrationCommand(session_, index_, lead, code), session_.Line.ReplyTimeout);
}

void DaCalibration::Exchange(const std::string& command, int timeoutMs) {
    interrupted_ = true;
    try {
        ExchangeCalibration(session_, index_, command, timeoutMs);
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(failure.what() + WhatToRestore());
    }
    interrupted_ = false;
}

std::string DaCalibration::WhatToRestore() const {
    if (!MustRestore())
        return {};
    return "\n\nThe module is still set up for calibration. Its own configuration is " + savedConfig_ +
           "; the command " + Configure(savedConfig_) + " restores it.";
}

} // namespace kavro
