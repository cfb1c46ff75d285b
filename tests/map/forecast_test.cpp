#include "link/baud.h"
#include "map/fast_search.h"
#include "map/search.h"
#include "sim/module_factory.h"
#include "support/test_session.h"

#include <numeric>
#include <random>

namespace kavro {
namespace {

std::vector<int> Together(int count) {
    std::vector<int> addresses(static_cast<std::size_t>(count));
    std::iota(addresses.begin(), addresses.end(), 1);
    return addresses;
}

std::vector<int> Spread(int count, std::uint32_t seed) {
    std::vector<int> addresses = Together(255);
    std::shuffle(addresses.begin(), addresses.end(), std::mt19937(seed));
    addresses.resize(static_cast<std::size_t>(count));
    return addresses;
}

/// A line with a module of some model at each of the addresses, at these baud codes in turn.
SimulatedLine LineOf(const std::vector<int>& addresses, const std::vector<int>& codes) {
    constexpr const char* Models[] = {"8210", "8250", "8310", "8410", "8460", "8510", "8610"};
    SimulatedLine line;
    for (std::size_t i = 0; i < addresses.size(); ++i)
        line.Add(MakeModule(Models[i % std::size(Models)], addresses[i],
                            BaudFromCode(static_cast<std::int16_t>(codes[i % codes.size()])), i % 5 == 0));
    return line;
}

using MakeSearch = std::function<std::unique_ptr<LineSearch>(Session& session, SearchEvents events)>;

/// How far off the time left was at worst after the first tenth, in percent of the whole.
double WorstForecast(const MakeSearch& make, const std::vector<int>& codes, SimulatedLine line) {
    SimulatedSession test(std::move(line));
    EnableBaudCodes(test.Session, codes);
    test.Session.SearchHighAddress = 255;
    std::vector<std::int64_t> ends; // ms, as forecast
    std::unique_ptr<LineSearch> search;
    search = make(test.Session, {.Address = [&](std::int16_t) {
                      if (search->Forecast().Share() >= 0.1)
                          ends.push_back(test.Time.Microseconds() / 1000 + search->Forecast().LeftMs());
                  }});
    const auto begun = test.Time.Microseconds() / 1000;
    search->Run();
    const auto end = test.Time.Microseconds() / 1000;
    const auto [first, last] = std::ranges::minmax(ends);
    return 100 * static_cast<double>(std::max(last - end, end - first)) / static_cast<double>(end - begun);
}

TEST(SearchForecast, IsHonestAfterTheFirstTenth) {
    const std::pair<const char*, MakeSearch> searches[] = {
        {"exact",
         [](Session& session, SearchEvents events) {
             return std::make_unique<NetworkSearch>(session, std::move(events));
         }},
        {"fast", [](Session& session, SearchEvents events) {
             return std::make_unique<FastSearch>(session, std::move(events));
         }}};
    const std::vector<int> one = {3}, all = {0, 1, 2, 3, 4, 5, 6, 7};
    for (const auto& [name, make] : searches)
        for (const auto& [tried, used] : {std::pair(one, one), {all, one}, {all, all}}) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(tried.size() + used.size()));
            for (const int count : {0, 3, 60})
                EXPECT_LE(WorstForecast(make, tried, LineOf(Together(count), used)), 10) << count;
            EXPECT_LE(WorstForecast(make, tried, LineOf(Spread(3, 1), used)), 10);
            // Where many stand at random nobody knows how many are to come: it may go wrong now and then.
            int wrong = 0;
            for (std::uint32_t seed = 1; seed <= 10; ++seed) {
                const double off = WorstForecast(make, tried, LineOf(Spread(60, seed), used));
                EXPECT_LE(off, 16) << seed;
                wrong += off > 10 ? 1 : 0;
            }
            EXPECT_LE(wrong, 3);
        }
}

} // namespace
} // namespace kavro
