#include "ports/sender.h"

#include "ports/spool.h"
#include "support/failure_text.h"
#include "terminal/test_folder.h"

#include <future>
#include <mutex>

namespace kavro {
namespace {

using Steady = std::chrono::steady_clock;

// Refuses its first connection as soon as it may, and takes what comes then.
class LateDestination : public Destination {
public:
    LateDestination(std::future<void> may, std::promise<std::size_t>& sent)
        : may_(std::move(may)), sent_(sent) {}
    std::string Name() const override { return "It"; }
    std::size_t Most() const override { return 10; }
    int GatherMs() const override { return 0; }
    std::optional<std::int64_t> Connect(std::int64_t /*lostEver*/) override {
        if (may_.valid()) {
            may_.get();
            throw DestinationRefused("no");
        }
        return std::nullopt;
    }
    std::int64_t Send(const std::vector<SpoolRow>& rows) override {
        sent_.set_value(rows.size());
        return rows.back().Id;
    }
    void SendGaps(const std::vector<SpoolGap>& /*gaps*/, std::int64_t /*lostEver*/) override {}
    void Close() override {}

private:
    std::future<void> may_;
    std::promise<std::size_t>& sent_;
};

TEST(SenderTest, ARefusalThatIsLateIsToldAndTriedAgain) {
    const TestFolder folder;
    const SpoolChoice choice = {folder.Path("spool"), "hall", 1'000'000, {"database"}};
    std::mutex mutex;
    std::vector<std::string> told;
    const auto tell = [&](const std::string& text) {
        const std::lock_guard lock(mutex);
        told.push_back(text.substr(0, text.find(". The")));
    };
    std::promise<void> may;
    std::promise<std::size_t> sent;
    Spool spool(choice, tell);
    spool.Take({{{1000, 0}, 5, "8250", {"0", "1.5000", 1.5, "V", ValueState::Ok}}});
    Sender sender(choice.Path, "database", std::make_unique<LateDestination>(may.get_future(), sent), tell);
    sender.Start();
    sender.AwaitFirstTry(Steady::now());
    may.set_value();
    EXPECT_EQ(sent.get_future().get(), 1U);
    sender.AskToEnd(Steady::now() + SenderEndTime);
    sender.Join();
    EXPECT_EQ(told, (std::vector<std::string>{"It has not answered yet", "It refuses: no",
                                              "It is there again, and gets what waited."}));
}

} // namespace
} // namespace kavro
