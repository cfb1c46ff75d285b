#include "map/search_forecast.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr double TrustInAlgorithm = 0.01; // share of the whole that the computed cost counts for
constexpr double MoreToCome = 2;          // steps with modules at most, for each that has been

} // namespace

void SearchForecast::Begin(double silentMs) {
    totalMs_ = silentMs;
    silent_ = found_ = {};
    steppedAt_ = clock_->Microseconds();
}

void SearchForecast::Step(double silentMs, bool found) {
    const std::int64_t now = clock_->Microseconds();
    Steps& steps = found ? found_ : silent_;
    steps.SilentMs += silentMs;
    steps.TookMs += static_cast<double>(now - steppedAt_) / 1000;
    ++steps.Count;
    steppedAt_ = now;
}

double SearchForecast::Share() const {
    return totalMs_ > 0 ? std::min((silent_.SilentMs + found_.SilentMs) / totalMs_, 1.0) : 0;
}

// Modules stand together or apart: as many more are expected as their density so far promises, but no more
// than twice those found.
double SearchForecast::LeftAfterStep() const {
    const double trusted = TrustInAlgorithm * totalMs_;
    const double pace = trusted > 0 ? (silent_.TookMs + trusted) / (silent_.SilentMs + trusted) : 1;
    const double done = silent_.SilentMs + found_.SilentMs;
    const double left = std::max(totalMs_ - done, 0.0);
    if (found_.Count == 0)
        return left * pace;
    const double alike = std::min(left * found_.SilentMs / done, MoreToCome * found_.SilentMs);
    return (left - alike) * pace + alike * found_.TookMs / std::max(found_.SilentMs, 1.0);
}

std::int64_t SearchForecast::LeftMs() const {
    const double since = static_cast<double>(clock_->Microseconds() - steppedAt_) / 1000;
    return std::max<std::int64_t>(static_cast<std::int64_t>(LeftAfterStep() - since), 0);
}

} // namespace kavro
