#pragma once

#include "sim/module_factory.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kavro {

constexpr const char* Silence = "(silence)";

/// What a module answers at `moment` (microseconds).
inline std::string Reply(SimulatedModule& module, std::string_view line, int baud = 9600,
                         std::int64_t moment = 0) {
    return module.Hear(line, baud, moment).value_or(Silence);
}

/// A script of "command reply,command reply" with the replies that the module really gives. "wait 1000"
/// lets that many milliseconds pass.
inline std::string Played(SimulatedModule& module, const std::string& script) {
    std::istringstream steps(script);
    std::string played;
    std::int64_t moment = 0;
    for (std::string command, reply; std::getline(steps, command, ' ') && std::getline(steps, reply, ',');) {
        if (command == "wait")
            moment += std::int64_t{1000} * std::stoi(reply);
        else
            reply = Reply(module, command, 9600, moment);
        played.append(played.empty() ? "" : ",").append(command).append(" ").append(reply);
    }
    return played;
}

/// Each script is what a module of that model, at address 5 with its factory settings, answers.
inline void ExpectPlayed(const std::vector<std::pair<const char*, std::string>>& scripts) {
    for (const auto& [model, script] : scripts)
        EXPECT_EQ(Played(*MakeModule(model, 5), script), script) << model;
}

} // namespace kavro
