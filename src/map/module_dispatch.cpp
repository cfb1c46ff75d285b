#include "map/module_dispatch.h"

#include "link/codes.h"

#include <string_view>

namespace kavro {

namespace {

using enum ModuleDialog;

constexpr std::int16_t AnyRange = -1;

struct DispatchRow {
    Operation For;
    std::int16_t Family;
    std::string_view Suffix; // empty: every model of the family
    std::int16_t Range;
    Dispatch Result;
};

// The title "Calibration" of the diagnostic message is meant as it stands.
constexpr Dispatch NoDiagnostics = {None, "No diagnostics function provided for this module.", "Calibration"};
constexpr Dispatch NoCalibration = {None, "This module doesn't need calibration!", "Calibration"};

// The first row that fits decides; without one nothing happens.
constexpr DispatchRow Rows[] = {
    {Operation::Configuration, DigitalIo, "460", AnyRange, {N46ConfigForm}},
    {Operation::Configuration, DigitalIo, "", AnyRange, {DioConfigForm}},
    {Operation::Configuration, AnalogInput, "", AnyRange, {MultiConfigForm}},
    {Operation::Configuration, AnalogOutput, "", AnyRange, {DaConfigForm}},
    {Operation::Configuration, MultiAnalogInput, "", AnyRange, {AdConfigForm}},
    {Operation::Configuration, CounterFrequency, "", AnyRange, {CtrConfigForm}},
    {Operation::Configuration, Converter, "", AnyRange, {N8610ConfigForm}},

    {Operation::Diagnostic, DigitalIo, "460", AnyRange, {N46DiagForm}},
    {Operation::Diagnostic, DigitalIo, "", AnyRange, {DioDiagForm}},
    {Operation::Diagnostic, AnalogInput, "", AnyRange, {MultiDiagForm}},
    {Operation::Diagnostic, AnalogOutput, "310", AnyRange, {DaDiagForm}},
    {Operation::Diagnostic, AnalogOutput, "320", AnyRange, {N32DiagForm}},
    {Operation::Diagnostic, MultiAnalogInput, "", AnyRange, {AdDiagForm}},
    {Operation::Diagnostic, CounterFrequency, "", CounterRange, {CtrDiagForm}},
    {Operation::Diagnostic, CounterFrequency, "", AnyRange, {FreqDiagForm}},
    {Operation::Diagnostic, Converter, "", AnyRange, NoDiagnostics},

    {Operation::Calibration, DigitalIo, "", AnyRange, NoCalibration},
    {Operation::Calibration, AnalogInput, "", AnyRange, {AdCalibForm}},
    {Operation::Calibration, AnalogOutput, "", AnyRange, {DaCalibForm}},
    {Operation::Calibration, MultiAnalogInput, "", AnyRange, {AdCalibForm}},
    {Operation::Calibration, Converter, "", AnyRange, NoCalibration},
};

} // namespace

Dispatch DispatchModel(std::string_view model, std::int16_t range, Operation operation) {
    const std::int16_t family = ModuleFamily(model);
    const std::string suffix = ModelSuffix(model);
    for (const DispatchRow& row : Rows) {
        const bool fits = row.For == operation && row.Family == family &&
                          (row.Suffix.empty() || row.Suffix == suffix) &&
                          (row.Range == AnyRange || row.Range == range);
        if (fits)
            return row.Result;
    }
    return {};
}

Dispatch DispatchModule(const Session& session, Operation operation) {
    if (session.SelectedModule < 0)
        return {None, "No module selected.", "Error"};
    const ModuleRecord& record = session.ModuleTable[session.SelectedModule];
    return DispatchModel(record.Model, record.InputRange, operation);
}

} // namespace kavro
