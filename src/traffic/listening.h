#pragma once

#include "link/line.h"
#include "traffic/wire_cutter.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Listens to the current port of a line on which another master talks, and sends nothing. The listeners of
/// the line are told of what passes. Unless the rate is given, it is found by trying, from the usual one on,
/// until what is heard makes sense.
class Listening {
public:
    /// `baudCode`: the rate, nothing to have it found. `rateFound` is called once it is.
    Listening(Line& line, std::optional<std::int16_t> baudCode,
              std::function<void(std::int32_t baud)> rateFound);

    /// Listens on for at most `milliseconds`. The port must be open. Throws `RuntimeFailure` when it fails,
    /// or does not take the rate.
    void Listen(int milliseconds);

    /// Tells what is left, as nothing more will be listened to.
    void End() { cutter_.End(); }

    /// Bits per second listened at now.
    std::int32_t Baud() const { return line_.BaudInUse(); }
    bool RateKnown() const { return known_; }

private:
    /// Characters that came in one go, kept until the rate is known.
    struct Heard {
        std::int64_t Utc = 0;
        std::string Characters;
    };

    void ApplyRate();
    void Try(const std::string& characters);
    void Know();

    Line& line_;
    std::function<void(std::int32_t baud)> rateFound_;
    WireCutter cutter_;
    std::vector<std::int16_t> rates_; // baud codes to try, in turn
    std::size_t place_ = 0;           // of the one being tried
    bool applied_ = false;
    bool known_ = false;
    std::vector<Heard> heard_; // at this rate
    std::string text_;         // all of that
};

} // namespace kavro
