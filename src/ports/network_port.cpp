#include "ports/network_port.h"

#include "link/runtime_failure.h"
#include "ports/deadline.h"
#include "ports/port_settings.h"

#include <chrono>
#include <thread>
#include <utility>

namespace kavro {

namespace {

constexpr int GreetingMs = 100; // in which a raw server that refuses a client says so
constexpr int WriteLimitMs = 5000;
constexpr int InUseTries = 3;
constexpr std::chrono::milliseconds InUsePause(200);
constexpr int MostReads = 256; // of 4096 bytes: what is discarded in one go from a server without end

constexpr const char* NoRfc2217 =
    "The server does not speak RFC 2217 on this port. Set the server's port to RFC 2217 (COM Port Control), "
    "or choose a TCP port of it that is; a raw port is tcp://HOST:PORT.";
constexpr const char* NoAnswer =
    "The server does not speak RFC 2217 on this port: it took the connection, but gave no answer within 5 s. "
    "Set the server's port to RFC 2217 (COM Port Control), or write tcp://HOST:PORT for a raw port.";
constexpr const char* SpeaksTelnet =
    "The server speaks Telnet on this port. Write rfc2217://HOST:PORT, or set the server's port to raw.";
constexpr const char* InUse =
    "The port is in use at the server, by another program or computer. Close the connection there first.";
constexpr const char* Lost = "The connection to the server is lost. Check the network and the server.";
constexpr const char* TakesNoMore =
    "The server takes no more characters, and the connection to it is closed. Check the server.";

} // namespace

NetworkPort::NetworkPort(NetworkAddress address, const NetworkLimits& limits)
    : address_(std::move(address)), limits_(limits) {}

void NetworkPort::PortOpen(bool open) {
    if (open && PortOpen())
        return;
    Forget();
    for (int tries = 1; open; ++tries) {
        inUse_ = false;
        try {
            opening_ = true;
            Open();
            opening_ = false;
            return;
        } catch (const RuntimeFailure&) {
            Forget();
            // A server can take a moment to let go of a port that was just closed.
            if (!inUse_ || tries == InUseTries)
                throw;
            std::this_thread::sleep_for(InUsePause);
        }
    }
}

void NetworkPort::Forget() {
    connection_.reset();
    client_ = {};
    greeting_ = {};
    received_.clear();
    toSend_.clear();
    next_ = 0;
    purgeFirst_ = opening_ = lost_ = false;
}

void NetworkPort::Open() {
    connection_ = std::make_unique<TcpConnection>(address_, limits_.ConnectMs);
    if (Raw())
        AwaitGreeting();
    else
        Agree();
}

void NetworkPort::AwaitGreeting() {
    const Deadline deadline(GreetingMs);
    while (received_.empty() && AwaitMore(deadline.LeftMs()))
        ThrowIfLost();
    if (greeting_.SaysInUse()) { // what closes the connection is on its way
        AwaitMore(deadline.LeftMs());
        ThrowIfLost();
    }
}

void NetworkPort::Agree() {
    const Deadline deadline(limits_.AgreeMs);
    toSend_ += client_.Begin();
    while (client_.Agreed() == ComPortClient::Agreement::Open) {
        SendWaiting();
        ThrowIfLost();
        if (deadline.Over())
            throw RuntimeFailure(NoAnswer);
        AwaitMore(deadline.LeftMs());
        received_.clear(); // what comes before is nobody's reply
        next_ = 0;
        ThrowIfLost();
    }
    if (client_.Agreed() == ComPortClient::Agreement::Refused)
        throw RuntimeFailure(NoRfc2217);
    purgeFirst_ = true; // what waits at the server is of before
}

void NetworkPort::Settings(const std::string& text) {
    RequireOpen();
    const std::int32_t baud = BaudOfSettings(text);
    if (Raw())
        return;
    SendAll(client_.Request(static_cast<std::uint32_t>(baud)));
    const Deadline deadline(limits_.ReportMs);
    while (!client_.Reported() && !deadline.Over()) {
        AwaitMore(deadline.LeftMs());
        received_.clear(); // while the rate changes nothing that comes is worth anything
        next_ = 0;
        ThrowIfLost();
        SendWaiting();
    }
    if (!client_.Refusal().empty())
        throw RateRefused("The server refuses the rate: asked for \"" + text + "\", it reports " +
                          client_.Refusal() + ". Choose a rate that the device server supports.");
}

void NetworkPort::RequireOpen() {
    if (!connection_)
        throw RuntimeFailure("The port is not open.");
    ThrowIfLost();
}

void NetworkPort::ThrowIfLost() {
    if (!lost_)
        return;
    const std::string text = LostText();
    inUse_ = text == InUse;
    Forget(); // told once: from now on the port is simply not open
    throw RuntimeFailure(text);
}

std::string NetworkPort::LostText() const {
    if (Raw() && greeting_.SpeaksTelnet())
        return SpeaksTelnet;
    if (greeting_.SaysInUse())
        return InUse;
    if (!opening_)
        return Lost;
    const std::string said = greeting_.Text();
    return "The server closed the connection at once" + (said.empty() ? "" : " and said \"" + said + "\"") +
           ". Another program may be using the port at the server: close the connection there first.";
}

// Takes what has arrived: how many bytes, whatever they were.
std::size_t NetworkPort::Receive() {
    chunk_.clear();
    if (!connection_->Read(chunk_))
        lost_ = true;
    if (chunk_.empty())
        return 0;
    if (next_ == received_.size()) {
        received_.clear();
        next_ = 0;
    }
    const std::size_t before = received_.size();
    if (Raw())
        received_ += chunk_;
    else
        client_.Receive(chunk_, received_);
    greeting_.Take(std::string_view(received_).substr(before));
    if (Raw() && greeting_.SpeaksTelnet())
        lost_ = true; // no reply could be told from what it negotiates
    toSend_ += client_.TakeAnswers();
    return chunk_.size();
}

// Waits for more and takes it; false when nothing has come.
bool NetworkPort::AwaitMore(int milliseconds) {
    if (!connection_->WaitForInput(milliseconds))
        return false;
    Receive();
    return true;
}

int NetworkPort::InBufferCount() {
    RequireOpen();
    if (next_ == received_.size()) {
        Receive();
        ThrowIfLost();
    }
    return static_cast<int>(received_.size() - next_);
}

// What is still in the server, or on its way, comes later in any case. The server is asked to drop what it
// holds only where characters came that nobody had asked for, and in front of the next command, in the same
// stream: it then drops them before it sends the command, so no reply can be among them. Not before every
// command, as a server may take its time over it, and nobody waits for its answer.
std::string NetworkPort::EmptyInBuffer() {
    RequireOpen();
    std::string discarded;
    int reads = 0;
    do {
        discarded += received_.substr(next_);
        received_.clear();
        next_ = 0;
    } while (reads++ < MostReads && Receive() > 0);
    discarded += received_;
    received_.clear();
    ThrowIfLost();
    purgeFirst_ = purgeFirst_ || !discarded.empty();
    return discarded;
}

char NetworkPort::Input() {
    if (next_ == received_.size() && InBufferCount() == 0)
        throw RuntimeFailure("No character is waiting at the device. Wait for one before reading.");
    return received_[next_++];
}

void NetworkPort::Output(const std::string& text) {
    RequireOpen();
    greeting_.NoteCommand();
    if (Raw())
        SendAll(text);
    else
        SendAll((std::exchange(purgeFirst_, false) ? ComPortClient::Purge() : "") + TelnetEscaped(text));
}

void NetworkPort::SendAll(const std::string& bytes) {
    toSend_ += bytes;
    SendWaiting();
    if (!toSend_.empty()) {
        const Deadline deadline(WriteLimitMs);
        while (!lost_ && !toSend_.empty() && connection_->WaitForRoom(deadline.LeftMs()) && !deadline.Over())
            SendWaiting();
    }
    if (lost_)
        Receive(); // a refusal in words may be there
    ThrowIfLost();
    if (toSend_.empty())
        return;
    Forget(); // the rest of a command cannot be sent later
    throw RuntimeFailure(TakesNoMore);
}

// Hands over as much as the system takes now.
void NetworkPort::SendWaiting() {
    while (!toSend_.empty()) {
        const auto taken = connection_->Write(toSend_);
        if (!taken)
            lost_ = true;
        if (taken.value_or(0) == 0)
            return;
        toSend_.erase(0, *taken);
    }
}

bool NetworkPort::WaitForInput(int milliseconds) {
    if (InBufferCount() > 0)
        return true;
    const Deadline deadline(milliseconds);
    do {
        SendWaiting();
        AwaitMore(deadline.LeftMs());
        ThrowIfLost();
        if (next_ < received_.size())
            return true;
    } while (!deadline.Over());
    return false;
}

} // namespace kavro
