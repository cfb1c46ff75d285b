#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace kavro {

/// A value as it was read, and as it is shown.
struct SeenValue {
    double Number = 0;
    std::string Text;
};

/// What has become of a value since it was seen first.
enum class ChangeState {
    Waiting, ///< nothing
    Moving,  ///< it is another one, and still changes
    Steady,  ///< it is another one, and stays there
};

/// Notices that a signal was applied: that a value has gone from where it stood, and stays where it is then.
class ChangeWatch {
public:
    /// `fullScale` of the value, in its unit; 0: a level, of which each other value counts at once.
    explicit ChangeWatch(double fullScale = 0) : fullScale_(fullScale) {}

    /// The next reading, at `moment` (microseconds).
    void Take(std::int64_t moment, const SeenValue& value);

    ChangeState State() const;

    /// Where it stood first, and then each value at which it came to stay, in order; the last ones of many.
    const std::vector<SeenValue>& Seen() const { return seen_; }

    /// Whether it has never stood still: it moves by itself.
    bool Restless() const { return restless_; }

private:
    bool HasLeft(double number) const;
    bool StandsStill() const;
    void Remember(const SeenValue& value);

    struct Sample {
        std::int64_t Moment;
        double Number;
    };

    double fullScale_;
    std::deque<Sample> samples_; // of the last seconds
    std::vector<SeenValue> seen_;
    bool restless_ = true;
};

} // namespace kavro
