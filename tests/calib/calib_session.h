#pragma once

#include "support/test_session.h"

namespace kavro {

/// Makes entry 4 a module at 9600 baud and selects it.
inline void SelectModule(Session& session, const std::string& model, std::int16_t address,
                         std::int16_t range = 0) {
    session.ScanIndex = -1;
    session.SelectedModule = 4;
    ModuleRecord& record = session.ModuleTable[4];
    record.Model = FixedText(model, 6);
    record.Address = address;
    record.BaudCode = 3;
    record.InputRange = range;
    session.Line.SetPortBaud(1, 3, 0, 0, 0);
}

/// Such a module on a scripted port.
struct CalibSession : ScriptedSession {
    explicit CalibSession(const std::string& model, std::int16_t address, std::int16_t range = 0) {
        SelectModule(Session, model, address, range);
        Log.clear();
    }
    /// Milliseconds since then.
    std::int64_t Elapsed() const { return Time.GetTickCount() - 1000; }
    /// What was done to the port since the last call, without port and rate.
    std::string Sent() {
        std::string sent;
        for (const std::string& line : std::exchange(Log, {}))
            sent += (sent.empty() ? "" : " ") + line.substr(line.rfind(' ') + 1);
        return sent;
    }
};

} // namespace kavro
