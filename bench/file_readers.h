#pragma once

#include "bench/mutations.h"
#include "bench/scratch_folder.h"
#include "cli/command_sender.h"
#include "link/port_config.h"
#include "ports/map_reader.h"
#include "ports/port_registry.h"
#include "ports/simulated_line_file.h"
#include "project/line_report.h"
#include "project/restore_journal.h"
#include "sim/demo_line.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"
#include "support/recorded_messages.h"

#include <fstream>

namespace kavro {

inline const std::string& FileWith(const std::string& content) {
    static const ScratchFolder folder; // for the whole run: thousands of files a second go there
    static const std::string path = folder.Path + "/file";
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

struct DemoSession {
    DemoSession() : Session(Ports(), Time) {}

    SerialPorts Ports() {
        SerialPorts ports;
        for (auto& port : ports)
            port = std::make_unique<SimulatedPort>(Line, Time);
        return ports;
    }

    VirtualClock Time;
    SimulatedLine Line = DemoLine();
    kavro::Session Session;
};

inline void ReadComCfg(const std::string& content) {
    DemoSession demo;
    RecordedMessages messages;
    ReadPortConfig(demo.Session.Line, FileWith(content), std::nullopt, messages, [] {});
    PortConfigText(demo.Session.Line);
}

inline void ReadPortsIni(const std::string& content) {
    DemoSession demo;
    PortRegistry registry(FileWith(content), {},
                          [&] { return std::make_unique<SimulatedPort>(demo.Line, demo.Time); });
    for (int port = 1; port <= PortTotal; ++port)
        registry.Device(port);
    registry.Save();
}

inline void ReadMapJson(const std::string& content) {
    DemoSession demo;
    TakeOver(demo.Session, ReadMapFile(FileWith(content)));
}

inline void ReadLineJson(const std::string& content) {
    SimulatedLine line = ReadSimulatedLine(FileWith(content));
    VirtualClock clock;
    SimulatedPort port(line, clock);
    if (!line.Plugged())
        return;
    port.PortOpen(true);
    for (const char* command : {"$032\r", "#030\r", "$002\r"}) {
        port.Output(command);
        while (port.WaitForInput(100) && clock.Microseconds() < 10'000'000)
            port.Input();
    }
}

inline void ReadProjectFile(const std::string& content) {
    const LineFile file = ReadLineFileText(content);
    if (LineFileText(ReadLineFileText(LineFileText(file))) != LineFileText(file))
        throw std::logic_error("a line file that changes when it is written");
    ReportHtml(file, std::nullopt, {});
}

inline void ReadCheck(const std::string& content) {
    ReadCheckText(content);
}

inline void ReadRestoreJournal(const std::string& content) {
    if (const auto cutOff = ReadJournal(FileWith(content)))
        CutOffText(*cutOff);
}

inline void ReadBatch(const std::string& content) {
    DemoSession demo;
    demo.Session.Line.CommPort(1).PortOpen(true);
    CommandSender(demo.Session, {}).SendFile(FileWith(content));
}

/// A function that reads a file, and a file that it reads well.
struct FileReader {
    const char* Name;
    void (*Read)(const std::string& content);
    std::string_view Good;
};

inline constexpr FileReader FileReaders[] = {
    {"COM.CFG", ReadComCfg, "100\n1\nn,8,1\n9600\n19200\n115200\n"},
    {"ports.ini", ReadPortsIni, "[General]\nCOM1=/dev/ttyUSB0\nCOM2=Simulated line\nCOM8=\"/dev/x y\"\n"},
    {"map", ReadMapJson,
     R"({"port": 1, "device": "demo", "complete": true, "modules": [{"address": 3, "addressHex": "03",
"model": "8250", "baud": 9600, "baudCode": 3, "checksum": true, "initialisation": false,
"inputRange": 8, "dataFormat": 0}, {"address": 255, "baudCode": 6, "model": "8510"}]})"},
    {"line file", ReadProjectFile,
     R"({"format": "kavro-line", "version": 1, "name": "Süd", "modules": [{"address": 5, "model": "8250",
"tag": "TT", "channels": {"0": {"tag": "a", "x": 1}}, "settings": {"baud": 9600, "range": "08", "format":
"Engineering Units", "channels": [0, 1]}, "y": [null]}, {"address": 18, "model": "8510", "settings":
{"checksum": true, "type": "counter", "max-0": 4294967295, "ttl-high": 2.4}}]})"},
    {"line check", ReadCheck,
     R"({"modules": [{"address": 5, "model": "8250", "sent": 8, "complete": 8, "silent": 0, "damaged": 0,
"refused": 0, "ms": {"median": 1.5, "max": 2}}], "findings": [{"finding": "a", "address": 5, "text": "b"}]})"},
    {"journal", ReadRestoreJournal,
     R"({"format": "kavro-restore-journal", "version": 1, "modules": [{"address": 5, "model": "8250"}]}
{"event": "begin", "address": 5}
{"event": "send", "address": 5, "command": "%0505080600"}
{"event": "outcome", "address": 5, "outcome": "accepted"}
{"event": "end", "address": 5, "as_wanted": true}
)"},
    {"simulated line", ReadLineJson,
     R"({"seed": 1, "faults": {"noise": true, "late": {"share": 0.5, "min": 1, "max": 9}, "damage": 0.5},
"modules": [{"model": "8250", "address": 3, "baud": 9600, "checksum": false, "range": "08", "format": 0},
{"model": "8410", "address": 4, "faults": {"silent": true, "delay": 5, "babble": true}},
{"model": "8260", "address": 7, "initialisation": true, "revision": "A1"}]})"},
    {"batch file", ReadBatch, "$012\r\n#050\r\n\r\n$022B7\n; remark\n@01DI\n"},
};

} // namespace kavro
