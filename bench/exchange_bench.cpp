// Transactions per second and processor time per transaction: a transaction of the line on a real port
// against a bare write-poll-read loop on the same pseudo-terminal. A process of its own plays the module, so
// that its work is not counted.

#include "bench/figures.h"
#include "link/line.h"
#include "link/runtime_failure.h"
#include "ports/device_port.h"
#include "ports/steady_clock.h"

#include <QCoreApplication>

#include <array>
#include <csignal>
#include <cstdio>
#include <functional>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
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

// Answers every carriage return until the process is ended.
[[noreturn]] void PlayModule(int master) {
    const std::string reply = std::string(Reply) + '\r';
    std::array<char, 256> received{};
    while (true) {
        const ssize_t size = read(master, received.data(), received.size());
        for (ssize_t i = 0; i < size; ++i)
            if (received[static_cast<std::size_t>(i)] == '\r' &&
                write(master, reply.data(), reply.size()) != static_cast<ssize_t>(reply.size()))
                _exit(1);
        if (size <= 0)
            _exit(1);
    }
}

// A pseudo-terminal with a module on it.
class ModuleProcess {
public:
    ModuleProcess() {
        termios raw{};
        cfmakeraw(&raw);
        int master = -1;
        std::array<char, 64> name{};
        if (openpty(&master, &slave_, name.data(), &raw, nullptr) != 0)
            throw RuntimeFailure("No pseudo-terminal can be opened.");
        Device = name.data();
        process_ = fork();
        if (process_ == 0)
            PlayModule(master);
        close(master);
    }
    ~ModuleProcess() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        close(slave_);
    }
    ModuleProcess(const ModuleProcess&) = delete;
    ModuleProcess& operator=(const ModuleProcess&) = delete;

    std::string Device;

private:
    int slave_ = -1; // keeps the device's settings between rounds
    pid_t process_ = -1;
};

void RequireReply(const std::string& reply) {
    if (reply != Reply)
        throw RuntimeFailure("The module on the pseudo-terminal answered \"" + reply + "\".");
}

void BareTransaction(int device, std::string& reply) {
    const std::string line = std::string(Command) + '\r';
    if (write(device, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        throw RuntimeFailure("Writing to the pseudo-terminal failed.");
    reply.clear();
    std::array<char, 256> received{};
    while (!reply.ends_with('\r')) {
        pollfd wait = {device, POLLIN, 0};
        const ssize_t size =
            poll(&wait, 1, TimeoutMs) == 1 ? read(device, received.data(), received.size()) : 0;
        if (size <= 0)
            throw RuntimeFailure("The module on the pseudo-terminal does not answer.");
        reply.append(received.data(), static_cast<std::size_t>(size));
    }
    reply.pop_back();
}

struct Cost {
    double WallUs = 0;      // per transaction
    double ProcessorUs = 0; // of this thread, per transaction
};

Cost Measure(const std::function<void(std::string& reply)>& transaction) {
    std::string reply;
    for (int i = 0; i < WarmUp; ++i)
        transaction(reply);
    const double wall = Seconds(CLOCK_MONOTONIC);
    const double processor = Seconds(CLOCK_THREAD_CPUTIME_ID);
    for (int i = 0; i < TransactionsPerRound; ++i) {
        transaction(reply);
        RequireReply(reply);
    }
    constexpr double PerTransactionUs = 1e6 / TransactionsPerRound;
    return {(Seconds(CLOCK_MONOTONIC) - wall) * PerTransactionUs,
            (Seconds(CLOCK_THREAD_CPUTIME_ID) - processor) * PerTransactionUs};
}

Cost MeasureBare(const std::string& name) {
    const int device = open(name.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    const Cost cost = Measure([&](std::string& reply) { BareTransaction(device, reply); });
    close(device);
    return cost;
}

Cost MeasureLine(Line& line) {
    line.CommPort(1).PortOpen(true);
    line.SetPortBaud(1, Baud9600Code, 0, 8, 0); // its pause, in the first round only, is not measured
    const Cost cost = Measure([&](std::string& reply) {
        if (!line.Exchange(Command, 0, Baud9600Code, TimeoutMs))
            throw RuntimeFailure("The module on the pseudo-terminal does not answer.");
        reply = line.ReplyText;
    });
    line.CommPort(1).PortOpen(false);
    return cost;
}

void Run() {
    const ModuleProcess module;
    SteadyClock clock;
    SerialPorts ports;
    ports[0] = std::make_unique<DevicePort>(module.Device);
    Line line(std::move(ports), clock);

    std::vector<double> bareWall, bareProcessor, lineWall, lineProcessor;
    for (int round = 0; round < Rounds; ++round) {
        const Cost bare = MeasureBare(module.Device);
        const Cost whole = MeasureLine(line);
        bareWall.push_back(bare.WallUs);
        bareProcessor.push_back(bare.ProcessorUs);
        lineWall.push_back(whole.WallUs);
        lineProcessor.push_back(whole.ProcessorUs);
    }
    std::printf("exchange: %d rounds of %d transactions, medians\n", Rounds, TransactionsPerRound);
    std::printf("  %-34s %10s %10s %8s %8s\n", "", "bare loop", "line", "ratio", "goal");
    std::printf("  %-34s %10.0f %10.0f %8.2f %8s\n", "transactions per second", 1e6 / Median(bareWall),
                1e6 / Median(lineWall), Median(lineWall) / Median(bareWall), "<= 1.3");
    std::printf("  %-34s %10.2f %10.2f %8.2f %8s\n", "processor time each, microseconds",
                Median(bareProcessor), Median(lineProcessor), Median(lineProcessor) / Median(bareProcessor),
                "<= 1.3");
    std::printf("  %-34s %10s %10.2f %8s %8s\n", "", "", Median(lineProcessor), "", "< 50 us");
}

} // namespace

} // namespace kavro

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    try {
        kavro::Run();
    } catch (const kavro::RuntimeFailure& failure) {
        std::fprintf(stderr, "exchange_bench: %s\n", failure.what());
        return 1;
    }
}
