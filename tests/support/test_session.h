#pragma once

#include "map/session.h"
#include "ports/append_file.h"
#include "sim/demo_line.h"
#include "sim/simulated_line.h"
#include "sim/simulated_port.h"
#include "support/failure_text.h"
#include "support/recorded_messages.h"
#include "support/scripted_port.h"

#include <functional>
#include <memory>
#include <optional>

namespace kavro {

using Lines = std::vector<std::string>;

/// Lets the search try these baud codes on COM1, and no others.
inline void EnableBaudCodes(Session& session, const std::vector<int>& codes) {
    session.Line.SettingsOf(1).BaudEnabled = {};
    for (const int code : codes)
        session.Line.SettingsOf(1).BaudEnabled[static_cast<std::size_t>(code)] = 1;
}

/// Makes `record` entry 0, selected and not in its initialisation state, at address 1 and 9600 baud unless
/// the record says otherwise.
inline void Select(Session& session, ModuleRecord record) {
    record.Address = record.Address == 0 ? std::int16_t{1} : record.Address;
    record.BaudCode = record.BaudCode == 0 ? std::int16_t{3} : record.BaudCode;
    session.ModuleTable[0] = record;
    session.SelectedModule = 0;
    session.ModuleCount = 1;
    session.ScanIndex = -1;
}

/// A session on a virtual clock; its ports come from the classes below.
struct TestSession {
    VirtualClock Time;
    Lines Log;                                ///< what was done to the ports of a script, in order
    std::map<std::string, std::string> Files; ///< content of the files saved, by path
    RecordedMessages Messages;
    kavro::Session Session;

protected:
    template <class MakePort>
    explicit TestSession(MakePort makePort)
        : Session({makePort(1), makePort(2), makePort(3), makePort(4), makePort(5), makePort(6), makePort(7),
                   makePort(8)},
                  Time) {
        Session.ReplaceFile = [this](const auto& path, const auto& content) { Files[path] = content; };
        Session.OpenFile = OpenAppendFile;
    }
};

/// A session whose COM ports answer from a script; COM1 is open.
struct ScriptedSession : TestSession {
    ScriptedSession()
        : TestSession([this](int number) { return std::make_unique<ScriptedPort>(number, Time, Log); }) {
        Port().PortOpen(true);
        Log.clear();
    }

    ScriptedPort& Port(int number = 1) { return static_cast<ScriptedPort&>(Session.Line.CommPort(number)); }
};

/// A session whose COM ports all lead to one simulated line; COM1 is open.
struct SimulatedSession : TestSession {
    explicit SimulatedSession(SimulatedLine line = SimulatedLine())
        : TestSession([this](int) { return std::make_unique<SimulatedPort>(Line, Time); }),
          Line(std::move(line)) {
        Session.Line.CommPort(1).PortOpen(true);
    }

    SimulatedLine Line;
};

} // namespace kavro
