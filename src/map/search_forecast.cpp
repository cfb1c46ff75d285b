#include "map/search_forecast.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr double TrustInAlgorithm = 0.02; // share of the whole that the computed cost counts for
constexpr double TrustInSilence = 0.02;   // share of a pass that counts as seen without a module
constexpr double RowGoesOn = 0.5;         // as long again as so far, by this factor
constexpr int FirstAddresses = 2;         // a row at the beginning starts at 0 or 1

} // namespace

void SearchForecast::Begin(double silentMs) {
    Clock* const clock = clock_;
    *this = SearchForecast(*clock);
    totalMs_ = silentMs;
    steppedAt_ = clock->Microseconds();
    BeginPass(silentMs);
}

void SearchForecast::BeginPass(double silentMs) {
    passMs_ = silentMs;
    passEndMs_ = doneMs_ + silentMs;
    passSteps_ = 0;
    row_ = Row::NotYet;
    rowMs_ = behindMs_ = foundBehindMs_ = 0;
}

void SearchForecast::Step(double silentMs, bool found) {
    const std::int64_t now = clock_->Microseconds();
    if (++steps_ > 1) {
        Steps& steps = found ? found_ : silent_;
        steps.SilentMs += silentMs;
        steps.TookMs += static_cast<double>(now - steppedAt_) / 1000;
    }
    doneMs_ += silentMs;
    steppedAt_ = now;
    Count(silentMs, found);
}

void SearchForecast::Count(double silentMs, bool found) {
    ++passSteps_;
    if (row_ == Row::NotYet && (found || passSteps_ > FirstAddresses))
        row_ = found && passSteps_ <= FirstAddresses ? Row::Going : Row::Over;
    else if (row_ == Row::Going && !found)
        row_ = Row::Over;
    if (row_ == Row::Going) {
        rowMs_ += silentMs;
        return;
    }
    behindMs_ += silentMs;
    foundBehindMs_ += found ? silentMs : 0;
}

double SearchForecast::Share() const {
    return totalMs_ > 0 ? std::min(doneMs_ / totalMs_, 1.0) : 0;
}

double SearchForecast::FoundToCome() const {
    const double left = std::max(passEndMs_ - doneMs_, 0.0);
    const double row = row_ == Row::Going ? std::min(left, RowGoesOn * rowMs_) : 0;
    const double density = foundBehindMs_ / std::max(behindMs_ + TrustInSilence * passMs_, 1.0);
    return row + (left - row) * density;
}

double SearchForecast::LeftAfterStep() const {
    const double trusted = TrustInAlgorithm * totalMs_;
    const double pace = trusted > 0 ? (silent_.TookMs + trusted) / (silent_.SilentMs + trusted) : 1;
    const double left = std::max(totalMs_ - doneMs_, 0.0);
    if (found_.SilentMs <= 0)
        return left * pace;
    const double found = FoundToCome();
    return (left - found) * pace + found * found_.TookMs / found_.SilentMs;
}

std::int64_t SearchForecast::LeftMs() const {
    const double since = static_cast<double>(clock_->Microseconds() - steppedAt_) / 1000;
    return std::max<std::int64_t>(static_cast<std::int64_t>(LeftAfterStep() - since), 0);
}

} // namespace kavro
