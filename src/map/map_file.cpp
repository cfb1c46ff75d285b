#include "map/map_file.h"

#include "link/port_config.h"
#include "map/list_line.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kavro {

namespace {

constexpr std::size_t DashColumns = 75;

std::string WithLineEnds(const Session& session, const std::string& text) {
    std::string result;
    for (const char character : text)
        result += character == '\n' ? session.LineEnd : std::string(1, character);
    return result;
}

// A map file around these lines of modules.
std::string MapFileText(const Session& session, const std::vector<std::string>& modules) {
    const std::string dashes(DashColumns, '-');
    std::string text =
        "COMPORT: COM" + std::to_string(session.Line.CurrentPort) + "\n" + dashes + "\n" + ListHeading + "\n";
    for (const std::string& line : modules)
        text += line + "\n";
    return WithLineEnds(session, text + dashes + "\n");
}

// Empty when there is none.
std::string TextOf(const std::string& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(std::filesystem::u8path(path), ignored))
        return {};
    std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Whether a map file lists modules: then it is longer than one without, whatever the digits of its port.
bool HasModules(const Session& session, const std::string& text) {
    return std::ranges::count(text, '\n') > std::ranges::count(MapFileText(session, {}), '\n');
}

void WriteLastMap(const Session& session) {
    const std::string before = session.Device.empty() ? TextOf(session.MapFilePath) : std::string();
    if (HasModules(session, before))
        session.ReplaceFile(session.MapFilePath + ".old", before);
    WriteMapFile(session, session.MapFilePath);
}

// What the step says when it fails, as a paragraph of its own.
std::string Attempt(const std::function<void()>& step) {
    try {
        step();
        return {};
    } catch (const RuntimeFailure& failure) {
        return std::string("\n\n") + failure.what();
    }
}

} // namespace

void WriteMapFile(const Session& session, const std::string& path) {
    session.ReplaceFile(path, MapFileText(session, session.Device));
}

std::string SaveSettings(Session& session) {
    Line& line = session.Line;
    std::string config;
    // The program ends: a port that cannot be closed keeps nothing from being saved. Without a port there are
    // no settings of one to save.
    Attempt([&] { line.CommPort(line.CurrentPort).PortOpen(false); });
    Attempt([&] { config = WithLineEnds(session, PortConfigText(line)); });
    std::string failures;
    if (!config.empty())
        failures += Attempt([&] { session.ReplaceFile(session.ConfigFilePath, config); });
    failures += Attempt([&] { WriteLastMap(session); });
    return failures.empty()
               ? std::string()
               : "Not everything could be saved. These files are as they were before:" + failures;
}

} // namespace kavro
