#include "diag/drive_question.h"

#include "diag/analog_output_panel.h"
#include "link/codes.h"
#include "link/models.h"
#include "map/module_access.h"

#include <optional>

namespace kavro {

namespace {

constexpr const char* NotTold = "the module does not tell";
constexpr const char* DiagnosticText = "Opening this window drives outputs of % at once:";
constexpr const char* CalibrationText =
    "This calibration changes the configuration of % while it is open, and drives the output to 4 mA in step "
    "4 and to 20 mA in step 5. The output can also move when the configuration changes.";
constexpr std::int16_t CalibrationRange = 48; // 0 to 20 mA
constexpr const char* CalibrationOutput = "4 mA, later 20 mA";
constexpr const char* RefusedCalibration = "would be sent 4 mA, later 20 mA"; // it has no such configuration

std::string WithTag(const std::string& what, const std::string& tag) {
    return tag.empty() ? what : what + ", " + tag;
}

std::string ModuleText(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    const ModuleTags* const tags = TagsOf(session, index);
    return WithTag("the module " + Trim(record.Model) + " at address " + ShownAddress(record.Address),
                   tags ? tags->Module.Tag : std::string());
}

std::string Shown(const Session& session, const std::optional<ToldOutput>& told, const std::string& unit) {
    if (!told)
        return NotTold;
    return ShownNumber(FormatNumber(NumericValue(told->Value), 1, 3), session.DecimalSeparator) + " " + unit +
           (told->Outside ? OutsideText : "");
}

DriveQuestion::Change SingleOutput(Session& session, int index) {
    const auto [low, high, unit] = SingleOutputBounds(session.ModuleTable[index]);
    return {WithTag("Output", ChannelTagOf(session, index, 0).Tag),
            Shown(session, ReadSingleOutput(session, index), unit),
            Shown(session, ToldOutput{FormatNumber(low, 1, 3)}, unit)};
}

// A module that does not answer for one port is not asked for the next.
void AddPorts(Session& session, int index, int ports, DriveQuestion& question) {
    bool asks = true;
    for (int port = 0; port < ports; ++port) {
        const auto now = asks ? ReadPort(session, index, port) : std::nullopt;
        asks = now || session.Line.FallenSilent();
        question.Changes.push_back({WithTag(std::string("Output ") + static_cast<char>('A' + port),
                                            ChannelTagOf(session, index, port).Tag),
                                    Shown(session, now, "V"), Shown(session, ToldOutput{"0.000"}, "V")});
    }
}

std::string ConfigurationText(std::int16_t range, std::int16_t format) {
    return Trim(RangeName(range)) + ", " + Trim(FormatName(format));
}

std::string FilledIn(std::string text, const std::string& module) {
    return text.replace(text.find('%'), 1, module);
}

} // namespace

DriveQuestion QuestionBefore(Session& session, DrivingWindow window) {
    const int index = session.SelectedModule;
    const ModuleRecord& record = session.ModuleTable[index];
    const bool ports = RowOfModel(record.Model).Kind == ModelKind::PortOutputs;
    const bool calibrates = window == DrivingWindow::Calibration;
    DriveQuestion question;
    question.Text = FilledIn(calibrates ? CalibrationText : DiagnosticText, ModuleText(session, index));
    if (calibrates)
        question.Changes.push_back({"Configuration", ConfigurationText(record.InputRange, record.DataFormat),
                                    ConfigurationText(CalibrationRange, EngineeringUnits)});
    if (ports)
        AddPorts(session, index, calibrates ? 1 : OutputPorts, question); // output A is the one calibrated
    else
        question.Changes.push_back(SingleOutput(session, index));
    if (calibrates)
        question.Changes.back().Becomes = ports ? RefusedCalibration : CalibrationOutput;
    return question;
}

} // namespace kavro
