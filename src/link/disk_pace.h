#pragma once

#include <chrono>
#include <optional>

namespace kavro {

/// Says when whoever writes again and again waits for the disk: once a second, as a wait may take as long as
/// a turn on the line. What was written in between outlives the program at once, a power cut only then.
class DiskPace {
public:
    /// Whether it is time; it then counts as waited for.
    bool Due() {
        const auto now = std::chrono::steady_clock::now();
        if (waited_ && now - *waited_ < std::chrono::seconds(1))
            return false;
        waited_ = now;
        return true;
    }

private:
    std::optional<std::chrono::steady_clock::time_point> waited_;
};

} // namespace kavro
