#include "ports/replay_port.h"

#include "link/port_devices.h"
#include "ports/recording_reader.h"

#include <utility>

namespace kavro {

ReplayPort::ReplayPort(const std::string& device, std::function<void()> notRecorded)
    : line_(ReadRecording(ReplayPath(device)).Traffic), port_(line_, clock_) {
    line_.NotRecorded = std::move(notRecorded);
}

} // namespace kavro
