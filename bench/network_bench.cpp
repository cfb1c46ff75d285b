// Cost of a transaction of the line over RFC 2217 on loopback, against a bare send-poll-receive loop over
// TCP. Processes of their own play the device servers, so that their work is not counted.

#include "bench/figures.h"
#include "link/line.h"
#include "link/runtime_failure.h"
#include "ports/com_port_server.h"
#include "ports/network_port.h"
#include "ports/steady_clock.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kavro {

namespace {

constexpr int Rounds = 301; // short and in turn, so that a busy machine slows both alike
constexpr int TransactionsPerRound = 200;
constexpr int WarmUp = 20;
constexpr int TimeoutMs = 1000;
constexpr std::int16_t Baud9600Code = 3;
constexpr const char* Command = "#01";
constexpr const char* Reply = ">+05.123+04.123+07.234-02.356+10.000-05.133+02.345+08.234"; // eight channels

void Require(bool good, const char* what) {
    if (!good)
        throw RuntimeFailure(what);
}

void SendNow(int number, const std::string& text) {
    if (!text.empty() && send(number, text.data(), text.size(), MSG_NOSIGNAL) < 0)
        _exit(1);
}

void NoDelay(int number) {
    const int on = 1;
    setsockopt(number, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// Answers what has come from a client, each carriage return with a reply. `comPort`: the client speaks
// RFC 2217, else null.
void Answer(int client, ComPortServer* comPort) {
    std::array<char, 256> bytes{};
    const ssize_t size = recv(client, bytes.data(), bytes.size(), 0);
    if (size <= 0)
        _exit(0);
    std::string data(bytes.data(), static_cast<std::size_t>(size));
    if (comPort != nullptr) {
        const std::string received = std::exchange(data, {});
        comPort->Receive(received, data);
        SendNow(client, comPort->TakeAnswers());
    }
    for (const char character : data)
        if (character == '\r')
            SendNow(client, std::string(Reply) + '\r');
}

// A bare client comes first, then one that speaks RFC 2217.
[[noreturn]] void PlayServer(int listener) {
    ComPortServer comPort(9600);
    std::array<pollfd, 2> waits{};
    for (pollfd& wait : waits) {
        wait = {accept(listener, nullptr, nullptr), POLLIN, 0};
        NoDelay(wait.fd);
    }
    SendNow(waits[1].fd, comPort.Begin());
    while (true) {
        poll(waits.data(), waits.size(), -1);
        for (std::size_t i = 0; i < waits.size(); ++i)
            if (waits[i].revents != 0)
                Answer(waits[i].fd, i == 1 ? &comPort : nullptr);
    }
}

// A device server with a module behind it: one process for both clients, so that the system treats them
// alike.
class ServerProcess {
public:
    ServerProcess() {
        const int listener = socket(AF_INET, SOCK_STREAM, 0);
        Address.sin_family = AF_INET;
        Address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof Address;
        Require(bind(listener, reinterpret_cast<sockaddr*>(&Address), size) == 0 && listen(listener, 4) == 0,
                "No TCP port can be listened at.");
        getsockname(listener, reinterpret_cast<sockaddr*>(&Address), &size);
        process_ = fork();
        if (process_ == 0)
            PlayServer(listener);
        close(listener);
    }
    ~ServerProcess() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    sockaddr_in Address{};

private:
    pid_t process_ = -1;
};

int Connected(const ServerProcess& server) {
    const int number = socket(AF_INET, SOCK_STREAM, 0);
    NoDelay(number);
    Require(connect(number, reinterpret_cast<const sockaddr*>(&server.Address), sizeof server.Address) == 0,
            "The server cannot be reached.");
    return number;
}

void BareTransaction(int number, std::string& reply) {
    const std::string line = std::string(Command) + '\r';
    Require(send(number, line.data(), line.size(), 0) == static_cast<ssize_t>(line.size()),
            "Sending over TCP failed.");
    reply.clear();
    std::array<char, 256> bytes{};
    while (!reply.ends_with('\r')) {
        pollfd wait = {number, POLLIN, 0};
        const ssize_t size = poll(&wait, 1, TimeoutMs) == 1 ? recv(number, bytes.data(), bytes.size(), 0) : 0;
        Require(size > 0, "The server does not answer.");
        reply.append(bytes.data(), static_cast<std::size_t>(size));
    }
    reply.pop_back();
}

struct Cost {
    std::vector<double> WallUs, ProcessorUs; // per transaction, of each round; of this thread
};

void Measure(Cost& cost, const std::function<void(std::string& reply)>& transaction) {
    std::string reply;
    for (int i = 0; i < WarmUp; ++i)
        transaction(reply);
    const double wall = Seconds(CLOCK_MONOTONIC);
    const double processor = Seconds(CLOCK_THREAD_CPUTIME_ID);
    for (int i = 0; i < TransactionsPerRound; ++i) {
        transaction(reply);
        Require(reply == Reply, "The server answered something else.");
    }
    constexpr double PerTransactionUs = 1e6 / TransactionsPerRound;
    cost.WallUs.push_back((Seconds(CLOCK_MONOTONIC) - wall) * PerTransactionUs);
    cost.ProcessorUs.push_back((Seconds(CLOCK_THREAD_CPUTIME_ID) - processor) * PerTransactionUs);
}

void Print(const char* what, const std::vector<double>& bare, const std::vector<double>& line) {
    std::printf("  %-34s %10.2f %10.2f %8.2f %8s\n", what, Median(bare), Median(line),
                Median(line) / Median(bare), "<= 1.5");
}

void Run() {
    const ServerProcess server;
    const int bareSocket = Connected(server);
    SteadyClock clock;
    SerialPorts ports;
    ports[0] = std::make_unique<NetworkPort>(
        NetworkAddress{NetworkKind::Rfc2217, "127.0.0.1", ntohs(server.Address.sin_port)});
    Line line(std::move(ports), clock);
    line.CommPort(1).PortOpen(true);
    line.SetPortBaud(1, Baud9600Code, 0, 8, 0);

    Cost bare, whole;
    for (int round = 0; round < Rounds; ++round) {
        Measure(bare, [&](std::string& reply) { BareTransaction(bareSocket, reply); });
        Measure(whole, [&](std::string& reply) {
            Require(line.Exchange(Command, 0, Baud9600Code, TimeoutMs), "The server does not answer.");
            reply = line.ReplyText;
        });
    }
    close(bareSocket);
    std::printf("network: %d rounds of %d transactions on loopback, medians\n", Rounds, TransactionsPerRound);
    std::printf("  %-34s %10s %10s %8s %8s\n", "", "bare TCP", "RFC 2217", "ratio", "goal");
    Print("time each, microseconds", bare.WallUs, whole.WallUs);
    Print("processor time each, microseconds", bare.ProcessorUs, whole.ProcessorUs);
}

} // namespace

} // namespace kavro

int main() {
    try {
        kavro::Run();
    } catch (const kavro::RuntimeFailure& failure) {
        std::fprintf(stderr, "network_bench: %s\n", failure.what());
        return 1;
    }
}
