#include "calib/calibration_commands.h"

#include "map/module_access.h"

namespace kavro {

namespace {

void OpenLostPort(Line& line) {
    line.CommPort(line.CurrentPort).PortOpen(true); // does nothing when it is open
}

} // namespace

std::string CalibrationCommand(const Session& session, int index, char lead, const std::string& code) {
    return lead + AddressText(session, index) + code;
}

bool ExchangeCalibration(Session& session, int index, const std::string& command, int timeoutMs) {
    OpenLostPort(session.Line);
    return ExchangeWithModule(session, index, command, timeoutMs);
}

void SendCalibration(Session& session, int index, const std::string& command) {
    OpenLostPort(session.Line);
    session.Line.CommandText = command;
    session.Line.SendCommand(command, ModuleChecksum(session, index), ModuleBaudCode(session, index));
}

} // namespace kavro
