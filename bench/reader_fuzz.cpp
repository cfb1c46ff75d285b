// Random and mutated replies into everything that reads replies, and random and mutated files into everything
// that reads files. Anything but success or a `RuntimeFailure` ends it.
//
//     reader_fuzz [SEED [SECONDS [STEP]]]
//
// Every step depends on the seed and its number alone; STEP is the one to begin with. Worth most in a build
// with sanitizers (-DKAVRO_SANITIZE=ON).

#include "bench/captured_output.h"
#include "bench/file_readers.h"
#include "bench/reply_readers.h"
#include "bench/tampered_port.h"
#include "sim/demo_line.h"

#include <map>
#include <set>

namespace kavro {

namespace {

constexpr int LongestStepSeconds = 30;

/// Good replies that the modules gave, to be pasted into others.
using Catalogue = std::vector<std::string>;

void Tamper(std::string& reply, Catalogue& catalogue, Dice& dice) {
    if (!reply.empty() && catalogue.size() < 4096)
        catalogue.push_back(reply);
    const std::string other = catalogue.empty() ? "" : dice.Of(catalogue);
    switch (dice.Below(12)) {
    case 0:
        reply.clear();
        break;
    case 1:
        reply = RandomText(dice, 24) + '\r';
        break;
    case 2:
        reply = other;
        break;
    case 3: // now and then longer than any reply
        reply = RandomText(dice, dice.Chance(0.1) ? 3000 : 40);
        break;
    case 4:
    case 5:
    case 6:
    case 7:
        Mutate(reply, other, dice);
        if (dice.Chance(0.8) && !reply.ends_with('\r'))
            reply += '\r';
        break;
    default: // as it is
        break;
    }
}

class ReaderFuzz {
public:
    explicit ReaderFuzz(RandomRun& run) : run_(run) {}

    void Run() {
        while (run_.Next()) {
            Dice dice(run_.Seed() * 1'000'003 + run_.Step());
            try {
                if (dice.Chance(0.1))
                    ReadFile(dice);
                else
                    ReadReplies(dice);
            } catch (const RuntimeFailure&) {
                ++refused_;
            } catch (const std::exception& exception) {
                run_.Fail(what_ + " threw " + exception.what());
            }
            output_.Take();
        }
    }

    /// How often each reader ran.
    std::map<std::string, std::uint64_t> Counts;
    std::uint64_t Exchanges = 0;

private:
    void ReadFile(Dice& dice) {
        const FileReader& reader = dice.Of(FileReaders);
        Begin(reader.Name);
        std::string content(reader.Good);
        if (dice.Chance(0.9))
            Mutate(content, std::string(content), dice);
        else
            content = RandomText(dice, 2000);
        reader.Read(content);
    }

    void ReadReplies(Dice& dice) {
        const ReplyReader& reader = dice.Of(ReplyReaders);
        SimulatedLine line = DemoLine();
        SimulatedModule& module = *line.Modules()[dice.Below(line.Modules().size())];
        VirtualClock clock;
        SerialPorts ports;
        auto port = std::make_unique<TamperedPort>(module, clock);
        TamperedPort& tampered = *port;
        ports[0] = std::move(port);
        ReaderContext context{{std::move(ports), clock}, module, dice};
        Begin(reader.Name + (" of " + module.Settings.Model));
        // Most readers work on a module that was found; by good replies or by any.
        Catalogue good;
        const bool anyReplies = dice.Chance(0.3);
        tampered.Tamper = [&](const std::string&, std::string& reply) {
            ++Exchanges;
            if (anyReplies)
                Tamper(reply, good, dice);
        };
        context.Identify();
        tampered.Tamper = [&](const std::string&, std::string& reply) {
            ++Exchanges;
            Tamper(reply, good, dice);
        };
        reader.Read(context);
    }

    void Begin(const std::string& what) {
        what_ = what;
        run_.Note(what);
        ++Counts[what];
    }

    RandomRun& run_;
    CapturedOutput output_;
    std::string what_;
    std::uint64_t refused_ = 0;
};

} // namespace

} // namespace kavro

int main(int argc, char** argv) {
    kavro::RandomRun run("reader_fuzz", argc, argv, kavro::LongestStepSeconds);
    std::map<std::string, std::uint64_t> counts;
    std::uint64_t exchanges = 0;
    {
        kavro::ReaderFuzz fuzz(run);
        fuzz.Run();
        counts = std::move(fuzz.Counts);
        exchanges = fuzz.Exchanges;
    }
    std::printf("fuzz: seed %llu, %llu steps, %zu readers and models, %llu exchanges, no finding\n",
                static_cast<unsigned long long>(run.Seed()), static_cast<unsigned long long>(run.Steps()),
                counts.size(), static_cast<unsigned long long>(exchanges));
}
