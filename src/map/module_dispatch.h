#pragma once

#include "map/session.h"

#include <cstdint>

namespace kavro {

/// What the user can do with the selected module.
enum class Operation { Configuration, Diagnostic, Calibration };

/// The dialog that serves a module; `None` when nothing opens.
enum class ModuleDialog {
    None,
    AdConfigForm,
    DaConfigForm,
    DioConfigForm,
    N46ConfigForm,
    CtrConfigForm,
    MultiConfigForm,
    N8610ConfigForm,
    AdDiagForm,
    DaDiagForm,
    N32DiagForm,
    DioDiagForm,
    N46DiagForm,
    CtrDiagForm,
    FreqDiagForm,
    MultiDiagForm,
    AdCalibForm,
    DaCalibForm,
};

/// Answer of the dispatch: a dialog, or else a message, or neither (nothing happens).
struct Dispatch {
    ModuleDialog Dialog = ModuleDialog::None;
    const char* Message = "";
    const char* Title = "";
};

/// Which dialog serves a module, by its model and range code.
Dispatch DispatchModel(std::string_view model, std::int16_t range, Operation operation);

/// Which dialog serves the selected module.
Dispatch DispatchModule(const Session& session, Operation operation);

} // namespace kavro
