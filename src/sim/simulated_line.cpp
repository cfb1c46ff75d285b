#include "sim/simulated_line.h"

#include "link/runtime_failure.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr std::int64_t BitsPerCharacter = 10;
constexpr std::uint32_t NoiseInsteadOneIn = 8;
constexpr std::uint32_t LongestNoise = 4;

} // namespace

std::int64_t AfterCharacters(std::int64_t moment, std::int64_t count, int baud) {
    return moment + count * BitsPerCharacter * 1'000'000 / baud;
}

SimulatedModule& SimulatedLine::Add(std::unique_ptr<SimulatedModule> module) {
    return *modules_.emplace_back(std::move(module));
}

SimulatedModule& SimulatedLine::ModuleAt(int address) const {
    for (const auto& module : modules_)
        if (module->Settings.Address == address)
            return *module;
    throw RuntimeFailure("There is no simulated module with the address " + std::to_string(address) +
                         ". Add one to the line.");
}

std::vector<TimedByte> SimulatedLine::Deliver(const std::string& command, int baud, std::int64_t moment) {
    std::vector<TimedByte> bytes;
    if (baud > 0 && Plugged()) {
        const auto heard = AfterCharacters(moment, static_cast<std::int64_t>(command.size()) + 1, baud);
        for (const auto& module : modules_) {
            const Faults faults = Combined(module->FaultsAt(command), LineFaults);
            const auto reply = module->Hear(command, baud, heard, faults);
            if (!reply)
                continue;
            const std::int64_t start = heard + TurnAroundMicroseconds + std::int64_t{1000} * faults.DelayMs;
            std::int64_t count = 0;
            for (const char byte : BytesOnWire(*reply, faults)) {
                const std::int64_t pauses = count * 1000 * faults.SlowCharacterMs;
                bytes.push_back({AfterCharacters(start, ++count, baud) + pauses, byte});
            }
        }
        std::ranges::stable_sort(bytes, {}, &TimedByte::Moment);
    }
    if (Log) {
        LineEvent event{.Moment = moment, .Baud = baud, .Command = command, .Reply = {}};
        for (const TimedByte& byte : bytes)
            event.Reply += byte.Byte;
        Log(event);
    }
    return bytes;
}

std::string SimulatedLine::BytesOnWire(std::string reply, const Faults& faults) {
    if (!faults.NoCarriageReturn)
        reply += '\r';
    if (!faults.Noise)
        return reply;
    const bool instead = Random(NoiseInsteadOneIn) == 0;
    std::string noise;
    for (std::uint32_t left = 1 + Random(LongestNoise); left > 0; --left)
        noise += static_cast<char>(Random(256));
    return instead ? noise : noise + reply;
}

void SimulatedLine::Unplug() {
    if (Plugged())
        ++unplugCount_;
    LineFaults.Unplugged = true;
}

} // namespace kavro
