#include "traffic/listening.h"

#include "link/baud.h"
#include "link/runtime_failure.h"

#include <array>
#include <utility>

namespace kavro {

namespace {

// Baud codes, the usual rates first.
constexpr std::array<std::int16_t, BaudCodeCount> RatesInTurn = {3, 4, 5, 7, 6, 2, 1, 0};
constexpr int LinesForSense = 2;                 // a command and its reply
constexpr int SenselessLines = 2;                // more of them, and the rate is wrong
constexpr std::size_t SenselessCharacters = 160; // likewise, without two lines among them
constexpr std::int64_t PatienceUs = 10'000'000;  // from the first character on

struct Sense {
    int Good = 0, Bad = 0; // lines
};

// The first line may have been cut by the beginning of the listening.
Sense SenseOf(std::string_view text) {
    Sense sense;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = text.find('\r', begin);
        if (end == std::string_view::npos)
            break;
        const bool good = MakesSense(text.substr(begin, end - begin));
        if (good)
            ++sense.Good;
        else if (begin > 0)
            ++sense.Bad;
        begin = end + 1;
    }
    return sense;
}

} // namespace

Listening::Listening(Line& line, std::optional<std::int16_t> baudCode,
                     std::function<void(std::int32_t baud)> rateFound)
    : line_(line), rateFound_(std::move(rateFound)),
      cutter_(line.CurrentPort, [&line](const LineTraffic& traffic) { line.Tell(traffic); }),
      known_(baudCode.has_value()) {
    rates_.assign(RatesInTurn.begin(), RatesInTurn.end());
    if (baudCode)
        rates_ = {*baudCode};
}

void Listening::Listen(int milliseconds) {
    if (!applied_)
        ApplyRate();
    const std::string characters = line_.Hear(milliseconds);
    const std::int64_t now = line_.Time().UtcMicroseconds();
    if (!known_)
        Try(characters);
    else if (characters.empty())
        cutter_.Wait(now);
    else
        cutter_.Take(characters, now, Baud());
}

// Adapters that do not know a rate leave the others to be tried.
void Listening::ApplyRate() {
    const int pause = std::exchange(line_.BaudChangePauseMs, 0); // nobody is spoken to
    try {
        line_.SetPortBaud(line_.CurrentPort, rates_[place_], 0, 8, 0);
        line_.Hear(0); // what came at another rate tells nothing of this one
        applied_ = true;
    } catch (const RateRefused&) {
        line_.BaudChangePauseMs = pause;
        if (rates_.size() == 1)
            throw;
        rates_.erase(rates_.begin() + static_cast<std::ptrdiff_t>(place_));
        place_ %= rates_.size();
    } catch (const RuntimeFailure&) {
        line_.BaudChangePauseMs = pause;
        throw;
    }
    line_.BaudChangePauseMs = pause;
}

void Listening::Try(const std::string& characters) {
    const std::int64_t now = line_.Time().UtcMicroseconds();
    if (!characters.empty())
        heard_.push_back({now, characters});
    if (heard_.empty())
        return;
    text_ += characters;
    const auto [good, bad] = SenseOf(text_);
    if (good >= LinesForSense && good > bad)
        return Know();
    if (bad <= SenselessLines && text_.size() < SenselessCharacters && now - heard_.front().Utc < PatienceUs)
        return;
    heard_.clear();
    text_.clear();
    place_ = (place_ + 1) % rates_.size();
    applied_ = false;
}

void Listening::Know() {
    known_ = true;
    if (rateFound_)
        rateFound_(Baud());
    for (const auto& [utc, characters] : heard_)
        cutter_.Take(characters, utc, Baud());
    heard_.clear();
    text_.clear();
}

} // namespace kavro
