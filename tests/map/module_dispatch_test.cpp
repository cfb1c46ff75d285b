#include "map/module_dispatch.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

using enum ModuleDialog;

TEST(ModuleDispatch, EveryModelAndOperation) {
    const std::string noDiagnostics = "Calibration: No diagnostics function provided for this module.";
    const std::string noCalibration = "Calibration: This module doesn't need calibration!";
    const struct {
        Lines Models;
        std::int16_t Range;
        ModuleDialog Configuration, Diagnostic, Calibration;
        std::string DiagnosticMessage, CalibrationMessage;
    } cases[] = {{{"8410", "8420", "8430", "8440", "8450", "8470", "8480", "8490"},
                  64,
                  DioConfigForm,
                  DioDiagForm,
                  None,
                  "",
                  noCalibration},
                 {{"8460"}, 64, N46ConfigForm, N46DiagForm, None, "", noCalibration},
                 {{"8210", "8220", "8240"}, 5, MultiConfigForm, MultiDiagForm, AdCalibForm, "", ""},
                 {{"8310"}, 48, DaConfigForm, DaDiagForm, DaCalibForm, "", ""},
                 {{"8320"}, 48, DaConfigForm, N32DiagForm, DaCalibForm, "", ""},
                 {{"8230", "8250", "8260"}, 80, AdConfigForm, AdDiagForm, AdCalibForm, "", ""},
                 {{"8510"}, 80, CtrConfigForm, CtrDiagForm, None, "", ""},
                 {{"8510"}, 81, CtrConfigForm, FreqDiagForm, None, "", ""},
                 {{"8510"}, 0, CtrConfigForm, FreqDiagForm, None, "", ""},
                 {{"8610", "8620"}, 0, N8610ConfigForm, None, None, noDiagnostics, noCalibration},
                 {{"8999", ""}, 80, None, None, None, "", ""}};
    ScriptedSession test;
    test.Session.SelectedModule = 3;
    const auto expect = [&](Operation operation, ModuleDialog dialog, const std::string& message) {
        const Dispatch result = DispatchModule(test.Session, operation);
        EXPECT_EQ(result.Dialog, dialog);
        EXPECT_EQ(*result.Message == 0 ? "" : std::string(result.Title) + ": " + result.Message, message);
    };
    for (const auto& row : cases) {
        for (const std::string& model : row.Models) {
            SCOPED_TRACE(model);
            test.Session.ModuleTable[3] = {.Model = model + "  ", .InputRange = row.Range};
            expect(Operation::Configuration, row.Configuration, "");
            expect(Operation::Diagnostic, row.Diagnostic, row.DiagnosticMessage);
            expect(Operation::Calibration, row.Calibration, row.CalibrationMessage);
        }
    }
    test.Session.SelectedModule = -1;
    for (const Operation operation :
         {Operation::Configuration, Operation::Diagnostic, Operation::Calibration})
        expect(operation, None, "Error: No module selected.");
}

} // namespace
} // namespace kavro
