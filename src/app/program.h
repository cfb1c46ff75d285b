#pragma once

#include "app/message_boxes.h"
#include "app/options.h"
#include "link/clock.h"
#include "map/kavro_form.h"
#include "map/session.h"
#include "ports/port_registry.h"
#include "sim/simulated_line.h"

namespace kavro {

/// The composition of the program: every part is built once, here, and handed what it needs.
class Program {
public:
    /// Builds everything; opens no port and shows nothing.
    explicit Program(const Options& options);

    /// Runs the start-up with its messages, and shows the main window.
    void Start();

private:
    DialogOpeners Openers();

    Options options_;
    SteadyClock clock_;
    MessageBoxes messages_;
    SimulatedLine simulatedLine_;
    PortRegistry registry_;
    Session session_;
    KavroForm form_;
};

} // namespace kavro
