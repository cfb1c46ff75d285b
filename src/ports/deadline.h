#pragma once

#include <algorithm>
#include <chrono>

namespace kavro {

/// A moment of the steady clock up to which something may wait.
class Deadline {
public:
    explicit Deadline(int milliseconds)
        : end_(std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds)) {}

    /// Whole milliseconds left, rounded up; 0 when it is over.
    int LeftMs() const {
        const auto left = end_ - std::chrono::steady_clock::now();
        return static_cast<int>(
            std::max<std::int64_t>(std::chrono::ceil<std::chrono::milliseconds>(left).count(), 0));
    }

    bool Over() const { return LeftMs() == 0; }

private:
    std::chrono::steady_clock::time_point end_;
};

} // namespace kavro
