#include "map/fast_search.h"

#include "link/baud.h"
#include "link/text.h"
#include "map/search.h"
#include "sim/module_factory.h"
#include "support/test_session.h"

#include <random>
#include <set>

namespace kavro {
namespace {

/// A line made by chance: how many modules, how quick, what is wrong with it.
class RandomLine {
public:
    explicit RandomLine(std::uint32_t seed) : random_(seed), seed_(seed) {}

    SimulatedLine Make() {
        random_.seed(seed_);
        SimulatedLine line(seed_);
        const int count = 1 + Below(40);
        const int turnAround = Below(3);
        for (int i = 0; i < count; ++i) {
            ModuleSettings settings = FactorySettings(Models[static_cast<std::size_t>(Below(6))]);
            settings.Address = Below(8) == 0 && i > 0 ? last_ : Below(Addresses + 4);
            settings.Baud = BaudFromCode(static_cast<std::int16_t>(Below(8)));
            settings.Checksum = Below(3) == 0;
            settings.Initialisation = i == 0 && Below(3) == 0;
            last_ = settings.Address;
            line.Add(MakeModule(settings)).OwnFaults = {
                .DelayMs = turnAround == 0 ? 0 : Below(turnAround == 1 ? 25 : 89),
                .Noise = Below(40) == 0,
                .Babble = Below(200) == 0};
        }
        line.TurnAroundMicroseconds = 1000;
        line.LineFaults.LatencyMs = Below(4) == 0 ? 16 : 0;
        line.LineFaults.Echo = Below(8) == 0;
        line.LineFaults.DamageShare = Below(4) == 0 ? 0.03 : 0;
        line.LineFaults.Late = {.Share = Below(4) == 0 ? 0.05 : 0, .MinMs = 10, .MaxMs = 80};
        return line;
    }

    static constexpr int Addresses = 40;

private:
    static constexpr const char* Models[] = {"8250", "8410", "8310", "8210", "8610", "8999"};
    int Below(int limit) { return static_cast<int>(random_() % static_cast<std::uint32_t>(limit)); }

    std::mt19937 random_;
    std::uint32_t seed_;
    int last_ = 0;
};

std::string Name(int address, int baud, bool checksum) {
    return std::to_string(address) + (checksum ? " with checksum at " : " at ") + std::to_string(baud);
}

/// The modules that were found and are really on the line; of these those whose model was read well.
std::set<std::string> Found(const SimulatedSession& test, bool wellRead) {
    std::set<std::string> names, models;
    for (const auto& module : test.Line.Modules()) {
        const ModuleSettings& settings = module->Settings;
        names.insert(Name(settings.Address, settings.Baud, settings.Checksum));
        models.insert(settings.Model);
    }
    std::set<std::string> found;
    for (int index = 0; index < test.Session.ModuleCount; ++index) {
        const ModuleRecord& record = test.Session.ModuleTable[index];
        const std::string name = Name(record.Address, BaudFromCode(record.BaudCode), record.Checksum == 1);
        if (names.contains(name) && (!wellRead || models.contains(Trim(record.Model))))
            found.insert(name);
    }
    return found;
}

std::unique_ptr<SimulatedSession> Searched(std::uint32_t seed, bool fast) {
    auto test = std::make_unique<SimulatedSession>(RandomLine(seed).Make());
    EnableBaudCodes(test->Session, {0, 1, 2, 3, 4, 5, 6, 7});
    test->Session.SearchHighAddress = RandomLine::Addresses - 1;
    if (fast)
        FastSearch(test->Session, {}).Run();
    else
        NetworkSearch(test->Session, {}, Belief::Strict).Run();
    return test;
}

// Two modules that talk into each other may be read by luck, without their models.
TEST(FastSearch, FindsWhateverTheExactOneFinds) {
    std::size_t found = 0;
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        const auto exact = Found(*Searched(seed, false), true), fast = Found(*Searched(seed, true), false);
        found += exact.size();
        for (const std::string& name : exact)
            EXPECT_TRUE(fast.contains(name)) << name << " of the line " << seed;
    }
    EXPECT_GT(found, 3000U);
}

TEST(FastSearch, ListsTheDemoLineAsTheExactOneDoes) {
    for (const std::int16_t highest :
         {std::int16_t{255}, std::int16_t{20}}) { // 20: the module in its initialisation state is at 22
        SimulatedSession exact(DemoLine()), fast(DemoLine());
        for (SimulatedSession* test : {&exact, &fast}) {
            EnableBaudCodes(test->Session, {3, 4, 5, 6});
            test->Session.SearchHighAddress = test == &exact ? 255 : highest;
        }
        NetworkSearch(exact.Session, {}, Belief::Strict).Run();
        Lines list;
        FastSearch search(fast.Session, {.Found = [&](int index) {
                              list.insert(list.begin() + index,
                                          fast.Session.Device[static_cast<std::size_t>(index)]);
                          }});
        search.Run();
        Lines want = exact.Session.Device;
        std::erase_if(want,
                      [&](const std::string& line) { return line[0] != '*' && std::stoi(line) > highest; });
        EXPECT_EQ(fast.Session.Device, want);
        EXPECT_EQ(list, want);
        EXPECT_EQ(fast.Session.Device[static_cast<std::size_t>(fast.Session.ScanIndex)][0], '*');
        EXPECT_TRUE(FindingTexts(search.Findings()).empty());
        for (int index = 0; index < exact.Session.ModuleCount && highest == 255; ++index)
            EXPECT_TRUE(SameSetup(fast.Session.ModuleTable[index], exact.Session.ModuleTable[index]))
                << index;
    }
}

TEST(FastSearch, TellsWhatItCannotList) {
    SimulatedSession test;
    for (const int baud : {9600, 1200, 19200})
        test.Line.Add(MakeModule("8410", 5, baud));
    test.Line.Add(MakeModule("8410", 7, 1200)).OwnFaults.Refuse = true;
    test.Line.Add(MakeModule("8410", 8, 9600)).OwnFaults.Babble = true;
    test.Line.Add(MakeModule("8410", 9, 9600)).OwnFaults.DelayMs = 60;
    EnableBaudCodes(test.Session, {0, 3, 4});
    test.Session.SearchHighAddress = 9;
    FastSearch search(test.Session, {});
    search.Run();
    EXPECT_EQ(test.Session.Device, (Lines{"   5(05H)   8410      1200                 Digital I/O",
                                          "   5(05H)   8410      9600                 Digital I/O",
                                          "   5(05H)   8410      19200                Digital I/O",
                                          "   9(09H)   8410      9600                 Digital I/O"}));
    EXPECT_EQ(FindingTexts(search.Findings()),
              (Lines{"Heard but not understood at addresses 7, 8.",
                     "More than one module has address 5. Give each module an address of its own."}));
    EXPECT_LT(test.Time.GetTickCount(), 60'000);
}

TEST(FastSearch, StopsAtTheNextAddressAndKeepsWhatItFound) {
    SimulatedSession test(DemoLine());
    EnableBaudCodes(test.Session, {3, 6});
    test.Session.SearchHighAddress = 255;
    FastSearch* running = nullptr;
    FastSearch search(test.Session, {.Address = [&](std::int16_t address) {
                          if (address == 3)
                              running->Stop();
                      }});
    running = &search;
    search.Run();
    FastSearch stopped(test.Session, {});
    stopped.Stop();
    stopped.Run();
    EXPECT_EQ(test.Session.ModuleCount, 4); // and the one in its initialisation state
    EXPECT_EQ(FindingTexts(search.Findings()), Lines{"The search was stopped at 9600 baud after address 3."});
}

} // namespace
} // namespace kavro
