#include "diag/line_recovery.h"
#include "support/failure_text.h"
#include "support/test_session.h"

namespace kavro {
namespace {

TEST(LineRecovery, TellsOnceAndTriesOnceASecond) {
    ScriptedSession test;
    std::vector<bool> changes;
    LineRecovery recovery(test.Session.Line, [&](bool lost) { changes.push_back(lost); });
    const auto fail = [&] {
        return FailureText([&] { recovery.Attempt([] { throw RuntimeFailure("gone"); }); });
    };
    test.Port().PortOpen(false);
    EXPECT_EQ(fail(), "gone");
    EXPECT_EQ(fail(), "");
    for (const bool refused : {true, false}) {
        test.Port().FailOpen = refused;
        test.Time.Sleep(999);
        EXPECT_FALSE(recovery.Ready());
        test.Time.Sleep(1);
        EXPECT_EQ(recovery.Ready(), !refused);
    }
    EXPECT_EQ(fail(), "") << "opened, but it still fails: the same outage";
    EXPECT_FALSE(recovery.Ready());
    recovery.Succeeded();
    EXPECT_EQ(changes, (std::vector<bool>{true, false}));
    EXPECT_EQ(fail(), "gone") << "the next outage is told again";
}

} // namespace
} // namespace kavro
