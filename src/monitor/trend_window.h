#pragma once

#include <cstdint>
#include <optional>

namespace kavro {

inline constexpr std::int64_t ShortestTrendMs = 10'000;

/// The width, in ms, of the columns that a trend is drawn in: the first round one that is not below
/// `atLeastMs`.
std::int64_t RoundColumnMs(double atLeastMs);

/// Which stretch of time a trend shows: one that ends now and goes on with it, or one that the user has
/// chosen.
class TrendWindow {
public:
    std::int64_t FromMs() const { return toMs_ - spanMs_; }
    std::int64_t ToMs() const { return toMs_; }
    std::int64_t SpanMs() const { return spanMs_; }

    /// Whether it goes on with the time.
    bool Following() const { return following_; }

    /// What time it is, and since when something is known. With `endless` there is more than that.
    void SetNow(std::int64_t nowMs, std::optional<std::int64_t> oldestMs, bool endless);

    /// That much time up to now.
    void SetSpan(std::int64_t spanMs);

    /// Makes the span `factor` times as long; the moment at that share of it (0 to 1) stays where it is.
    void Zoom(double factor, double share);

    /// Moves by that part of the span, back when it is negative.
    void Pan(double share);

    void ToOldest();
    void ToNow();
    /// All that is known.
    void ToWhole();

private:
    void MoveTo(std::int64_t toMs);
    std::int64_t Clamped(double spanMs) const;

    std::int64_t nowMs_ = 0;
    std::int64_t toMs_ = 0;
    std::int64_t spanMs_ = 600'000;
    std::int64_t oldestMs_ = 0;
    bool endless_ = false;
    bool following_ = true;
};

} // namespace kavro
