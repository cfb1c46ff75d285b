#include "sim/simulated_line.h"

#include "link/runtime_failure.h"

#include <algorithm>
#include <iterator>

namespace kavro {

namespace {

constexpr std::int64_t BitsPerCharacter = 10;
constexpr std::uint32_t NoiseInsteadOneIn = 8;
constexpr std::uint32_t LongestNoise = 4;
constexpr std::uint32_t LostInCollisionOneIn = 4;
constexpr std::size_t BabbleLength = 32768; // nobody waits for that many
constexpr std::size_t LongestLogged = 1024;

// The characters of `text` one behind the other with that pause between two.
std::vector<TimedByte> InTurn(const std::string& text, int baud, std::int64_t start, std::int64_t pause) {
    std::vector<TimedByte> bytes;
    bytes.reserve(text.size());
    for (std::int64_t count = 0; const char byte : text) {
        const std::int64_t pauses = count * pause;
        const std::int64_t begin = AfterCharacters(start, count, baud) + pauses;
        const std::int64_t end = AfterCharacters(start, ++count, baud) + pauses;
        bytes.push_back({.Moment = end, .Byte = byte, .Begin = begin, .End = end, .Baud = baud});
    }
    return bytes;
}

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

std::vector<TimedByte> SimulatedLine::Deliver(const std::string& command, int baud, std::int64_t moment,
                                              bool disturbed) {
    std::vector<TimedByte> bytes;
    if (baud > 0 && Plugged())
        bytes = Answers(command, baud, moment, disturbed);
    if (Log) {
        LineEvent event{.Moment = moment, .Baud = baud, .Command = command, .Reply = {}};
        for (const TimedByte& byte : bytes)
            if (event.Reply.size() < LongestLogged)
                event.Reply += byte.Byte;
        Log(event);
    }
    return bytes;
}

std::vector<TimedByte> SimulatedLine::Answers(const std::string& command, int baud, std::int64_t moment,
                                              bool disturbed) {
    std::vector<TimedByte> bytes;
    if (LineFaults.Echo)
        bytes = InTurn(command + '\r', baud, moment, 0);
    const auto heard = AfterCharacters(moment, static_cast<std::int64_t>(command.size()) + 1, baud);
    for (const auto& module : modules_) {
        const Faults faults = Combined(module->FaultsAt(command), LineFaults);
        if (const auto reply = disturbed ? std::nullopt : module->Hear(command, baud, heard, faults))
            std::ranges::copy(Characters(*reply, faults, baud, heard + TurnAroundMicroseconds),
                              std::back_inserter(bytes));
    }
    for (TimedByte& byte : bytes)
        byte.Moment = HandedOver(byte.End);
    std::ranges::stable_sort(bytes, {}, &TimedByte::End);
    return bytes;
}

std::vector<TimedByte> SimulatedLine::Characters(const std::string& reply, const Faults& faults, int baud,
                                                 std::int64_t start) {
    const std::string text = faults.Babble ? Babble() : BytesOnWire(reply, faults);
    const std::int64_t lateMs = faults.DelayMs + LateMs(faults.Late);
    auto bytes = InTurn(text, baud, start + 1000 * lateMs, std::int64_t{1000} * faults.SlowCharacterMs);
    for (TimedByte& byte : bytes)
        byte.Babble = faults.Babble;
    return bytes;
}

// An adapter with a latency hands its characters over when its timer ticks.
std::int64_t SimulatedLine::HandedOver(std::int64_t end) const {
    const std::int64_t tick = std::max<std::int64_t>(std::int64_t{1000} * LineFaults.LatencyMs, 1);
    return (end + tick - 1) / tick * tick;
}

std::optional<char> SimulatedLine::Garbled() {
    if (Random(LostInCollisionOneIn) == 0)
        return std::nullopt;
    return static_cast<char>(Random(256));
}

std::string SimulatedLine::BytesOnWire(std::string reply, const Faults& faults) {
    if (!faults.NoCarriageReturn)
        reply += '\r';
    if (Chance(faults.DamageShare))
        Damage(reply);
    if (!faults.Noise)
        return reply;
    const bool instead = Random(NoiseInsteadOneIn) == 0;
    std::string noise;
    for (std::uint32_t left = 1 + Random(LongestNoise); left > 0; --left)
        noise += static_cast<char>(Random(256));
    return instead ? noise : noise + reply;
}

std::string SimulatedLine::Babble() {
    std::string text(BabbleLength, ' ');
    for (char& character : text)
        character = static_cast<char>('\r' + 1 + Random(255)); // anything but a carriage return
    return text;
}

// Once: cut before some character (the last one, as a rule the carriage return, still comes), or one
// character doubled, dropped or replaced.
void SimulatedLine::Damage(std::string& text) {
    const std::size_t place = Random(static_cast<std::uint32_t>(text.size()));
    switch (Random(4)) {
    case 0:
        text.erase(place, std::max<std::size_t>(text.size() - 1 - place, 1));
        break;
    case 1:
        text.insert(place, 1, text[place]);
        break;
    case 2:
        text.erase(place, 1);
        break;
    default:
        text[place] = static_cast<char>(text[place] + 1 + static_cast<int>(Random(255)));
    }
}

std::int64_t SimulatedLine::LateMs(const LateReplies& late) {
    if (!Chance(late.Share))
        return 0;
    return late.MinMs + Random(static_cast<std::uint32_t>(late.MaxMs - late.MinMs) + 1);
}

void SimulatedLine::Unplug() {
    if (Plugged())
        ++unplugCount_;
    LineFaults.Unplugged = true;
}

} // namespace kavro
