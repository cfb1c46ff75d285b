#pragma once

#include "app/ending.h"
#include "app/message_boxes.h"
#include "app/options.h"
#include "map/kavro_form.h"
#include "map/session.h"
#include "ports/port_registry.h"
#include "ports/steady_clock.h"
#include "sim/simulated_line.h"
#include "traffic/recorder.h"
#include "traffic/traffic_form.h"
#include "traffic/traffic_log.h"

#include <memory>
#include <optional>

namespace kavro {

/// The composition of the program: every part is built once, here, and handed what it needs.
class Program {
public:
    /// Builds everything; opens no port and shows nothing. `endRequests`: a descriptor that becomes readable
    /// when the program is to end in order; -1 for none.
    explicit Program(const Options& options, int endRequests = -1);

    /// Runs the start-up with its messages, and shows the main window.
    void Start();

private:
    DialogOpeners Openers();
    void BeginRecording();
    void ReopenLineFile();
    void ShowTraffic();
    void ShowReport(QWidget* parent);

    Options options_;
    SteadyClock clock_;
    MessageBoxes messages_;
    SimulatedLine simulatedLine_;
    PortRegistry registry_;
    std::optional<Recorder> recorder_; // told by the session's line, which ends before it
    TrafficLog traffic_;               // likewise
    Session session_;
    KavroForm form_;
    std::unique_ptr<TrafficForm> trafficForm_; // from its first use on
    Ending ending_;
};

} // namespace kavro
