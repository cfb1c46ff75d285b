#pragma once

#include "cli/cli_options.h"
#include "map/session.h"
#include "ports/port_registry.h"
#include "ports/steady_clock.h"
#include "sim/simulated_line.h"
#include "traffic/recorder.h"

#include <functional>
#include <optional>
#include <string>

namespace kavro {

/// The session of one command: its line is the one that the options name, with the settings the user has
/// saved.
class CliSession {
public:
    /// Picks the port: the one that the options name, else the one the user has saved. Opens
    /// nothing.
    explicit CliSession(const LineOptions& options);
    CliSession(const CliSession&) = delete; // its ports hold on to its members
    CliSession& operator=(const CliSession&) = delete;

    /// Opens the port, begins the recording that the options ask for, and does the work: its exit code, or
    /// that of a recording that failed. Throws `RuntimeFailure` when the port cannot be opened or none is set
    /// up, when the recording cannot be begun, and what the work throws.
    int Run(const std::function<int()>& work);

    /// Device of the port: a path, a network address, a recording, or "demo".
    std::string Device() const { return registry_.Device(Session.Line.CurrentPort); }

private:
    // Before the session, whose ports use all of these.
    SteadyClock clock_;
    SimulatedLine demoLine_;
    PortRegistry registry_;
    RecordingChoice recording_;
    std::optional<Recorder> recorder_;

public:
    kavro::Session Session; ///< settings loaded, port chosen

private:
    void LoadSettings(const LineOptions& options);
    void OpenPort();
    void BeginRecording();
    bool EndRecording();

    std::string settingsFailure_;
    bool rateChosen_ = false; // on the command line
};

/// Makes the modules of a map that was printed as JSON those of the session. Throws `RuntimeFailure` when it
/// cannot be read, or is a text map: that does not tell the checksums, which is to be known before a module
/// is spoken to.
void UseMap(Session& session, const std::string& path);

/// Sets the reply time-out, in ms, and the long one, its fivefold.
void SetTimeouts(Line& line, std::int16_t timeoutMs);

} // namespace kavro
