// The traffic window with its log full: the longest time between two turns of the event loop while a thousand
// exchanges a second come in, alone, while rows are filtered and while all are saved; what the log costs.

#include "bench/figures.h"
#include "bench/tampered_port.h"
#include "map/session.h"
#include "sim/module_factory.h"
#include "traffic/traffic_form.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>

#include <cstdio>
#include <fstream>

#include <unistd.h>

namespace kavro {

namespace {

constexpr int Exchanges = 20'000;
constexpr int Rounds = 15;
constexpr int RunMs = 5000;

double ResidentMb() {
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

LineTraffic Example(std::int64_t number) {
    const std::string address = ToHex(static_cast<std::int32_t>(number % 32), 2);
    const bool silent = number % 50 == 0;
    return {.Utc = 1'772'460'309'120'345 + number * 1000,
            .Port = 1,
            .Baud = 9600,
            .Sent = "$" + address + "2\r",
            .Received = silent ? "" : "!" + address + "080600\r",
            .FirstUs = silent ? -1 : 7100,
            .LastUs = silent ? -1 : 16'200,
            .Outcome = silent ? TrafficOutcome::Silent : TrafficOutcome::Complete};
}

class NoDevices : public PortDevices {
public:
    std::string Device(int /*port*/) const override { return SimulatedLineDevice; }
    std::vector<DetectedDevice> Detect() const override { return {}; }
    void Assign(int /*port*/, const std::string& /*device*/) override {}
    void Save() override {}
};

template <class Control>
Control& Find(QObject& form, const char* name) {
    return *form.findChild<Control*>(name);
}

struct Bench {
    Bench() {
        for (std::int64_t i = 0; i < 256; ++i)
            Examples.push_back(Example(i));
    }

    // Nanoseconds a call, the median of several rounds.
    template <class Call>
    static double Cost(Call call) {
        std::vector<double> costs;
        for (int round = 0; round < Rounds; ++round) {
            const double start = Seconds(CLOCK_PROCESS_CPUTIME_ID);
            for (int i = 0; i < Exchanges; ++i)
                call(i);
            costs.push_back((Seconds(CLOCK_PROCESS_CPUTIME_ID) - start) / Exchanges * 1e9);
        }
        return Median(costs);
    }

    void Fill() {
        const double before = ResidentMb();
        for (std::int64_t i = 0; i < TrafficLog::MostRows + 1000; ++i)
            Log.Passed(Example(i));
        std::printf("  %-52s %10.1f MiB\n", "memory of a million rows", ResidentMb() - before);
        const double passed =
            Cost([this](int i) { Log.Passed(Examples[static_cast<std::size_t>(i) % 256]); });
        std::printf("  %-52s %10.3f us, goal 1\n", "one more, the oldest dropped", passed / 1000);
    }

    // With and without, in turns, so that both see the same machine.
    void Exchange() {
        VirtualClock time;
        const auto module = MakeModule("8250", 5);
        SerialPorts ports;
        ports[0] = std::make_unique<TamperedPort>(*module, time);
        Line line(std::move(ports), time);
        line.BaudChangePauseMs = 0;
        std::vector<double> costs[2];
        for (int round = 0; round < Rounds; ++round)
            for (int with = 0; with < 2; ++with) {
                line.Listeners.clear();
                if (with == 1)
                    line.Listeners.push_back(&Log);
                const double start = Seconds(CLOCK_PROCESS_CPUTIME_ID);
                for (int i = 0; i < Exchanges; ++i)
                    line.Exchange("$052", 0, 3, 100);
                costs[with].push_back((Seconds(CLOCK_PROCESS_CPUTIME_ID) - start) / Exchanges * 1e6);
            }
        std::printf("  %-52s %10.3f us, without %.3f, difference %.3f, goal 1\n", "an exchange with the log",
                    Median(costs[1]), Median(costs[0]), Median(costs[1]) - Median(costs[0]));
    }

    // The longest time between two turns while a thousand exchanges a second come in.
    template <class Act, class Done>
    void Turns(const char* what, Act act, Done done) {
        double longest = 0;
        double last = Seconds(CLOCK_MONOTONIC);
        const double start = last;
        double doneAfter = 0;
        QTimer turns;
        std::int64_t told = 0;
        QObject::connect(&turns, &QTimer::timeout, [&] {
            const double now = Seconds(CLOCK_MONOTONIC);
            longest = std::max(longest, now - std::exchange(last, now));
            for (; static_cast<double>(told) < (now - start) * 1000; ++told)
                Log.Passed(Examples[static_cast<std::size_t>(told) % 256]);
            if (doneAfter == 0 && done())
                doneAfter = now - start;
            if ((now - start) * 1000 > RunMs && doneAfter > 0)
                QApplication::exit();
        });
        turns.start(1);
        act();
        QApplication::exec();
        std::printf("  %-52s %10.1f ms, goal 100; done after %.2f s, %lld exchanges\n", what, longest * 1000,
                    doneAfter, static_cast<long long>(told));
    }

    void Window() {
        VirtualClock time;
        Session session({}, time);
        session.ReplaceFile = [](const std::string&, const std::string&) {};
        const NoDevices devices;
        const double before = ResidentMb();
        TrafficForm form(session, devices, Log, [] { return false; });
        const auto rows = [&form] { return form.findChild<QAbstractItemView*>()->model()->rowCount(); };
        const auto quiet = [&form] { return !Find<QWidget>(form, "Progress").isVisible(); };
        Turns(
            "opening, longest time between turns", [&] { form.BringUp(); },
            [&] { return rows() >= TrafficLog::MostRows && quiet(); });
        std::printf("  %-52s %10.1f MiB\n", "memory of the window", ResidentMb() - before);
        Turns(
            "following", [] {}, [] { return true; });
        for (const char* text : {"080600", "no such text"})
            Turns(
                text, [&] { Find<QLineEdit>(form, "TextFilter").setText(text); }, quiet);
        Turns(
            "filter by outcome", [&] { Find<QComboBox>(form, "OutcomeFilter").setCurrentIndex(1); }, quiet);
        Find<QLineEdit>(form, "TextFilter").clear();
        Turns(
            "all rows again", [&] { Find<QComboBox>(form, "OutcomeFilter").setCurrentIndex(0); }, quiet);
        Turns(
            "next failure, hexadecimal",
            [&] {
                Find<QAbstractButton>(form, "NextFailureBtn").click();
                Find<QAbstractButton>(form, "HexCheck").setChecked(true);
            },
            quiet);
        for (const char* entry : {"SaveText", "SaveCsv", "SaveRecording"})
            Turns(
                entry, [&] { Save(form, entry); },
                [&] { return Find<QLabel>(form, "Status").text().contains("saved"); });
    }

    static void Save(TrafficForm& form, const char* entry) {
        Find<QAbstractButton>(form, "SaveBtn").click();
        Find<QAction>(form, entry).trigger();
        Find<QWidget>(form, "SaveMenu").close();
        auto& dialog = Find<QDialog>(form, "SaveDialog");
        Find<QLineEdit>(dialog, "fileNameEdit").setText("/tmp/kavro-bench-rows");
        dialog.accept();
    }

    TrafficLog Log;
    std::vector<LineTraffic> Examples;
};

} // namespace

} // namespace kavro

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    kavro::Bench bench;
    std::printf("traffic\n");
    bench.Fill();
    bench.Exchange();
    bench.Window();
}
