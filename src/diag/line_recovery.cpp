#include "diag/line_recovery.h"

#include "link/runtime_failure.h"
#include "map/module_access.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr int RetryMs = 1000;
constexpr int PauseFactor = 4; // a try that takes its time, as over a network, leaves the windows more of it

} // namespace

LineRecovery::LineRecovery(Line& line, std::function<void(bool lost)> changed)
    : line_(line), changed_(std::move(changed)) {}

bool LineRecovery::Attempt(const std::function<void()>& operation) {
    try {
        operation();
        return true;
    } catch (const Interruption&) {
        throw; // nothing has failed
    } catch (const RuntimeFailure&) {
        nextTry_ = line_.Time().GetTickCount() + RetryMs;
        if (std::exchange(lost_, true))
            return false;
        changed_(true);
        throw;
    }
}

bool LineRecovery::Ready() {
    if (!lost_)
        return true;
    const std::int64_t now = line_.Time().GetTickCount();
    if (now < nextTry_)
        return false;
    nextTry_ = now + RetryMs;
    try {
        OpenPort(line_);
        return true;
    } catch (const RuntimeFailure&) {
        const std::int64_t end = line_.Time().GetTickCount();
        nextTry_ = std::max(nextTry_, end + PauseFactor * (end - now));
        return false; // told when the outage began
    }
}

void LineRecovery::Succeeded() {
    if (std::exchange(lost_, false))
        changed_(false);
}

} // namespace kavro
