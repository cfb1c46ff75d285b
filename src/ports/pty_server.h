#pragma once

#include "link/clock.h"
#include "ports/side_input.h"
#include "sim/transmission.h"

#include <memory>
#include <string>

namespace kavro {

/// Serves a simulated line on a pseudo-terminal, as if it were a serial port, at real speed. It hears
/// commands at the baud rate that the program on the other side has set, and goes on when that program closes
/// the device and opens it again.
class PtyServer {
public:
    /// Opens the pseudo-terminal, raw and at 9600 baud, and makes the symbolic link `linkPath` to it when
    /// that is not empty; a link that an earlier run left behind is replaced. Line and clock must outlive the
    /// server. Throws `RuntimeFailure` when something else stands at `linkPath`, or the system refuses.
    PtyServer(SimulatedLine& line, Clock& clock, const std::string& linkPath = {});

    /// Closes the device and removes the link, if it is still its own.
    ~PtyServer();
    PtyServer(const PtyServer&) = delete;
    PtyServer& operator=(const PtyServer&) = delete;

    /// Path of the device for the other side.
    const std::string& DevicePath() const;

    /// Serves until `Stop` is called or `stopDescriptor` (ignored when negative) becomes readable. Takes
    /// what comes at `input` meanwhile, whose end changes nothing. Sleeps whenever there is nothing to do.
    /// Throws `RuntimeFailure` when the pseudo-terminal fails.
    void Run(int stopDescriptor = -1, SideInput input = {});

    /// Makes `Run` return; may be called from any thread, and before `Run`.
    void Stop();

private:
    struct Device; // what only the operating system's side needs
    std::unique_ptr<Device> device_;
    Transmission transmission_;
    Clock& clock_;
};

} // namespace kavro
