#include "map/module_contact.h"
#include "support/test_session.h"

namespace kavro {
namespace {

TEST(ModuleContact, SpeaksToTheModuleAsMapAndOptionsSay) {
    ScriptedSession test;
    Session& session = test.Session;
    session.ModuleTable[0] = {.Address = 6, .BaudCode = 4, .Checksum = 1};
    session.ModuleTable[1] = {.Address = 7, .BaudCode = 6};
    session.ModuleTable[2] = {.Address = 22, .BaudCode = 5, .Checksum = 1};
    session.ModuleCount = 3;
    session.ScanIndex = 2;
    using Ways = std::vector<SendSettings>;
    const auto ways = [&](std::int16_t address, const ContactOptions& options) {
        return ContactOf(session, address, options).Ways;
    };
    EXPECT_EQ(ways(5, {}), (Ways{{0, 3}, {1, 3}}));
    EXPECT_EQ(ways(5, {.BaudCode = 4}), (Ways{{0, 4}, {1, 4}}));
    EXPECT_EQ(ways(5, {.BaudCode = {}, .Checksum = true}), (Ways{{1, 3}}));
    EXPECT_EQ(ways(6, {}), (Ways{{1, 4}}));
    EXPECT_EQ(ways(7, {}), (Ways{{0, 6}}));
    EXPECT_EQ(ways(7, {.BaudCode = 0, .Checksum = true}), (Ways{{1, 0}}));
    EXPECT_EQ(ContactOf(session, 22, {}).Address, 0);
    EXPECT_EQ(ways(22, {}), (Ways{{0, 3}}));
    EXPECT_EQ(ways(0, {.BaudCode = 4}), (Ways{{0, 3}}));
}

TEST(ModuleContact, TellsASilentModuleFromOneThatIsNotUnderstood) {
    SimulatedSession test(DemoLine());
    const auto heard = [&](std::int16_t address, Faults faults) {
        test.Line.ModuleAt(address).OwnFaults = faults;
        return TryContact(test.Session, ContactOf(test.Session, address));
    };
    EXPECT_FALSE(heard(5, {.Silent = true}).Heard);
    EXPECT_TRUE(heard(5, {.NoCarriageReturn = true}).Heard);
    EXPECT_EQ(heard(5, {}).Identified, Identified::Fully);
    EXPECT_EQ(test.Session.SelectedModule, 0);
}

} // namespace
} // namespace kavro
