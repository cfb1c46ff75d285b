#pragma once

#include "map/session.h"

#include <string>
#include <vector>

namespace kavro {

/// The windows that drive outputs of their own accord.
enum class DrivingWindow {
    Diagnostic,  ///< of an analog output module: drives by being opened
    Calibration, ///< of one: changes its configuration, and drives in two of its steps
};

/// What such a window is going to drive, for the user to decide on.
struct DriveQuestion {
    /// One thing that it changes.
    struct Change {
        std::string What;    ///< "Output A, FCV-101"
        std::string Now;     ///< "12.500 mA", or that the module does not tell
        std::string Becomes; ///< "4.000 mA"
    };

    std::string Text;            ///< which module and how, in a sentence or two
    std::vector<Change> Changes; ///< in the order in which they are made
};

/// The question for the selected module, an 8310 or 8320, with what its outputs stand at now ("$AA6"), which
/// is all that is sent. Throws `RuntimeFailure` when the port fails.
DriveQuestion QuestionBefore(Session& session, DrivingWindow window);

} // namespace kavro
