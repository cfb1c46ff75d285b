#include "calib/calibration_commands.h"

#include "map/module_access.h"

namespace kavro {

namespace {

template <class Operation>
auto OnOpenPort(Line& line, Operation operation) {
    try {
        line.CommPort(line.CurrentPort).PortOpen(true); // does nothing when it is open
        return operation();
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(failure.what() +
                             std::string("\n\nConnect the line and try again: the port opens by itself."));
    }
}

} // namespace

std::string CalibrationCommand(const Session& session, int index, char lead, const std::string& code) {
    return lead + AddressText(session, index) + code;
}

bool ExchangeCalibration(Session& session, int index, const std::string& command, int timeoutMs) {
    return OnOpenPort(session.Line, [&] { return ExchangeWithModule(session, index, command, timeoutMs); });
}

void SendCalibration(Session& session, int index, const std::string& command) {
    OnOpenPort(session.Line, [&] {
        session.Line.CommandText = command;
        session.Line.SendCommand(command, ModuleChecksum(session, index), ModuleBaudCode(session, index));
    });
}

} // namespace kavro
