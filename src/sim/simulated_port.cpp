#include "sim/simulated_port.h"

#include "link/runtime_failure.h"

#include <algorithm>
#include <charconv>

namespace kavro {

namespace {

constexpr int HighestBaud = 4'000'000;

int BaudOfSettings(const std::string& text) {
    int baud = 0;
    const auto comma = text.find(',');
    const char* const end = text.data() + std::min(comma, text.size());
    const auto result = std::from_chars(text.data(), end, baud);
    if (result.ec != std::errc() || result.ptr != end || baud <= 0 || baud > HighestBaud)
        throw RuntimeFailure("The port settings \"" + text +
                             "\" are not understood. They look like \"9600,n,8,1\".");
    return baud;
}

} // namespace

SimulatedPort::SimulatedPort(SimulatedLine& line, Clock& clock)
    : line_(line), clock_(clock), transmission_(line) {}

void SimulatedPort::Settings(const std::string& text) {
    RequireOpen();
    baud_ = BaudOfSettings(text);
}

void SimulatedPort::PortOpen(bool open) {
    if (open == open_)
        return;
    if (open && !line_.Plugged())
        throw RuntimeFailure("The simulated line is unplugged. Plug it in again.");
    transmission_.Clear();
    unplugCount_ = line_.UnplugCount();
    open_ = open;
}

int SimulatedPort::InBufferCount() {
    RequireOpen();
    return static_cast<int>(transmission_.Arrived(clock_.Microseconds()));
}

std::string SimulatedPort::EmptyInBuffer() {
    RequireOpen();
    return transmission_.TakeArrived(clock_.Microseconds());
}

char SimulatedPort::Input() {
    if (InBufferCount() == 0)
        throw RuntimeFailure("No character is waiting at the simulated line. Wait for one before reading.");
    const char character = transmission_.Take();
    inReply_ = character != '\r';
    return character;
}

void SimulatedPort::Output(const std::string& text) {
    RequireOpen();
    inReply_ = false;
    transmission_.Send(text, baud_, clock_.Microseconds());
}

bool SimulatedPort::WaitForInput(int milliseconds) {
    RequireOpen();
    const std::int64_t limit = clock_.Microseconds() + std::int64_t{1000} * std::max(milliseconds, 0);
    const std::int64_t next = transmission_.NextMoment().value_or(limit + 1);
    // The rest of a reply comes in one piece, as a serial chip with a buffer hands it over: at high rates
    // waking for every character would cost more than everything else.
    const std::int64_t awaited = inReply_ ? transmission_.RunEnd().value_or(next) : next;
    clock_.SleepUntil(std::min(awaited, limit));
    return next <= limit;
}

void SimulatedPort::RequireOpen() {
    if (!open_)
        throw RuntimeFailure("The port is not open.");
    if (line_.Plugged() && line_.UnplugCount() == unplugCount_)
        return;
    open_ = false; // told once: from now on the port is simply not open
    throw RuntimeFailure("The simulated line is unplugged. Plug it in again.");
}

} // namespace kavro
