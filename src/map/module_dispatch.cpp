#include "map/module_dispatch.h"

#include "link/codes.h"
#include "link/models.h"

#include <string_view>

namespace kavro {

namespace {

using enum ModuleDialog;
using enum ModelKind;

constexpr std::int16_t AnyRange = -1;

struct DispatchRow {
    Operation For;
    ModelKind Kind;
    std::int16_t Range;
    Dispatch Result;
};

// The title "Calibration" of the diagnostic message is meant as it stands.
constexpr Dispatch NoDiagnostics = {None, "No diagnostics function provided for this module.", "Calibration"};
constexpr Dispatch NoCalibration = {None, "This module doesn't need calibration!", "Calibration"};

// The first row that fits decides; without one nothing happens.
constexpr DispatchRow Rows[] = {
    {Operation::Configuration, PortLines, AnyRange, {N46ConfigForm}},
    {Operation::Configuration, DigitalLines, AnyRange, {DioConfigForm}},
    {Operation::Configuration, AlarmInput, AnyRange, {MultiConfigForm}},
    {Operation::Configuration, SingleOutput, AnyRange, {DaConfigForm}},
    {Operation::Configuration, PortOutputs, AnyRange, {DaConfigForm}},
    {Operation::Configuration, MultiInput, AnyRange, {AdConfigForm}},
    {Operation::Configuration, Counting, AnyRange, {CtrConfigForm}},
    {Operation::Configuration, Converting, AnyRange, {N8610ConfigForm}},

    {Operation::Diagnostic, PortLines, AnyRange, {N46DiagForm}},
    {Operation::Diagnostic, DigitalLines, AnyRange, {DioDiagForm}},
    {Operation::Diagnostic, AlarmInput, AnyRange, {MultiDiagForm}},
    {Operation::Diagnostic, SingleOutput, AnyRange, {DaDiagForm}},
    {Operation::Diagnostic, PortOutputs, AnyRange, {N32DiagForm}},
    {Operation::Diagnostic, MultiInput, AnyRange, {AdDiagForm}},
    {Operation::Diagnostic, Counting, CounterRange, {CtrDiagForm}},
    {Operation::Diagnostic, Counting, AnyRange, {FreqDiagForm}},
    {Operation::Diagnostic, Converting, AnyRange, NoDiagnostics},

    {Operation::Calibration, PortLines, AnyRange, NoCalibration},
    {Operation::Calibration, DigitalLines, AnyRange, NoCalibration},
    {Operation::Calibration, AlarmInput, AnyRange, {AdCalibForm}},
    {Operation::Calibration, SingleOutput, AnyRange, {DaCalibForm}},
    {Operation::Calibration, PortOutputs, AnyRange, {DaCalibForm}},
    {Operation::Calibration, MultiInput, AnyRange, {AdCalibForm}},
    {Operation::Calibration, Converting, AnyRange, NoCalibration},
};

} // namespace

Dispatch DispatchModel(std::string_view model, std::int16_t range, Operation operation) {
    const ModelKind kind = RowOfModel(model).Kind;
    for (const DispatchRow& row : Rows)
        if (row.For == operation && row.Kind == kind && (row.Range == AnyRange || row.Range == range))
            return row.Result;
    return {};
}

Dispatch DispatchModule(const Session& session, Operation operation) {
    if (session.SelectedModule < 0)
        return {None, "No module selected.", "Error"};
    const ModuleRecord& record = session.ModuleTable[session.SelectedModule];
    return DispatchModel(record.Model, record.InputRange, operation);
}

} // namespace kavro
