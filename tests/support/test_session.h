#pragma once

#include "map/session.h"
#include "sim/simulated_line.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"
#include "support/recorded_messages.h"
#include "support/scripted_port.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kavro {

using Lines = std::vector<std::string>;

/// Lets the search try these baud codes on COM1, and no others.
inline void EnableBaudCodes(Session& session, const std::vector<int>& codes) {
    session.Line.SettingsOf(1).BaudEnabled = {};
    for (const int code : codes)
        session.Line.SettingsOf(1).BaudEnabled[static_cast<std::size_t>(code)] = 1;
}

/// A session whose COM ports answer from a script; COM1 is open.
class ScriptedSession {
public:
    ScriptedSession() : Session(MakePorts(), Time) {
        Session.ReplaceFile = [this](const std::string& path, const std::string& content) {
            Files[path] = content;
        };
        Port().PortOpen(true);
        Log.clear();
    }

    ScriptedPort& Port(int number = 1) { return static_cast<ScriptedPort&>(Session.Line.CommPort(number)); }

    VirtualClock Time;
    Lines Log;                                ///< what was done to the ports, in order
    std::map<std::string, std::string> Files; ///< content of the files saved, by path
    RecordedMessages Messages;
    kavro::Session Session;

private:
    SerialPorts MakePorts() {
        SerialPorts ports;
        for (std::size_t i = 0; i < ports.size(); ++i)
            ports[i] = std::make_unique<ScriptedPort>(static_cast<int>(i) + 1, Time, Log);
        return ports;
    }
};

/// A session whose COM ports all lead to one simulated line, on a virtual clock; COM1 is open.
class SimulatedSession {
public:
    explicit SimulatedSession(SimulatedLine line = SimulatedLine())
        : Line(std::move(line)), Session(MakePorts(), Time) {
        Session.ReplaceFile = [this](const std::string& path, const std::string& content) {
            Files[path] = content;
        };
        Session.Line.CommPort(1).PortOpen(true);
    }

    VirtualClock Time;
    SimulatedLine Line;
    std::map<std::string, std::string> Files; ///< content of the files saved, by path
    RecordedMessages Messages;
    kavro::Session Session;

private:
    SerialPorts MakePorts() {
        SerialPorts ports;
        for (auto& port : ports)
            port = std::make_unique<SimulatedPort>(Line, Time);
        return ports;
    }
};

} // namespace kavro
