#pragma once

#include "monitor/published.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace kavro {

/// When a reading tells something new.
struct OnChangeRule {
    double Band = 0;                      ///< smaller changes do not count, in the unit of the channel
    std::optional<std::int64_t> RestMs{}; ///< after that time any reading counts; nothing: never
};

/// Reads "BAND" or "BAND,SECONDS". Throws `RuntimeFailure` for any other text.
OnChangeRule ParseOnChange(const std::string& text);

/// Tells which readings of a line are worth sending on, by what was sent of the same value last.
class OnChange {
public:
    explicit OnChange(const OnChangeRule& rule) : rule_(rule) {}

    /// Whether a value differs by more than the band from the one that passed last, has another state or
    /// unit, is the first of its channel, or comes when the rest is over or the clock was put back. A digital
    /// word, whose bits are no magnitude, passes when it is another one. What passes is what the next ones
    /// are compared with.
    bool Passes(std::int16_t address, const std::string& channel, const PublishedValue& value);

    /// Forgets what has passed, as whoever it was sent to may have, too.
    void Forget() { last_.clear(); }

private:
    OnChangeRule rule_;
    std::map<std::pair<std::int16_t, std::string>, PublishedValue> last_; // by address and channel
};

} // namespace kavro
