#include "map/map_file.h"

#include "link/port_config.h"
#include "map/list_line.h"

namespace kavro {

void WriteMapFile(const Session& session, const std::string& path) {
    const std::string dashes(75, '-');
    std::string content =
        "COMPORT: COM" + std::to_string(session.Line.CurrentPort) + "\n" + dashes + "\n" + ListHeading + "\n";
    for (const std::string& line : session.Device)
        content += line + "\n";
    session.ReplaceFile(path, content + dashes + "\n");
}

void SaveSettings(Session& session) {
    const std::function<void()> steps[] = {
        [&] { session.Line.CommPort(session.Line.CurrentPort).PortOpen(false); },
        [&] { session.ReplaceFile(session.ConfigFilePath, PortConfigText(session.Line)); },
        [&] { WriteMapFile(session, "admin.map"); },
    };
    for (const auto& step : steps) {
        try {
            step();
        } catch (const RuntimeFailure&) {
            // The program ends: what cannot be saved must not keep the rest from being saved.
        }
    }
}

} // namespace kavro
