#pragma once

#include "support/test_session.h"

namespace kavro {

/// Entry 4 is selected, at 9600 baud. It answers only the cold-junction read of address 12 (hexadecimal).
struct CalibSession : ScriptedSession {
    CalibSession(const char* model, std::int16_t address, std::int16_t range,
                 const std::string& reading = {}) {
        Session.ScanIndex = -1;
        Session.SelectedModule = 4;
        Session.ModuleTable[4] = {
            .Address = address, .Model = FixedText(model, 6), .BaudCode = 3, .InputRange = range};
        Session.Line.SetPortBaud(1, 3, 0, 0, 0);
        Port().Replies["9600 $123"] = {reading};
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
