#include "cli/captured.h"
#include "cli/replace_command.h"
#include "sim/module_factory.h"

#include <csignal>

namespace kavro {
namespace {

// A new 8250 in its initialisation state; what is done when a command of that text is heard first, of one
// with a checksum when it is written.
struct Cabinet : SimulatedSession {
    Cabinet(const std::string& at, void (*act)(Cabinet& cabinet))
        : New(Line.Add(MakeModule(FactorySettings("8250")))) {
        New.PowerUp(PowerOn::Initialising);
        Line.Log = [this, at, act, done = false](const LineEvent& event) mutable {
            Written = Written || event.Command.starts_with('%');
            if (done || !event.Command.starts_with(at) || (at.size() > 4 && !Written))
                return;
            done = true;
            act(*this);
        };
    }

    SimulatedModule& New;
    bool Written = false;
};

TEST(ReplaceCommand, TellsInWhatStateTheModuleIsHoweverItEnds) {
    constexpr const char* Asked = "$052";     // whether the place is free
    constexpr const char* InPlace = "$052BB"; // with its checksum
    const auto stop = [](Cabinet&) { std::raise(SIGINT); };
    const auto pull = [](Cabinet& cabinet) { cabinet.Line.Unplug(); };
    const std::tuple<const char*, void (*)(Cabinet&), int, const char*> cases[] = {
        {Asked, stop, ExitNotAccepted, "Stopped. Nothing was written"},
        {Asked, pull, -1, "Nothing was written"},
        {"%00", stop, ExitNotAccepted, "Stopped. The new module may have some of the settings"},
        {"%00", pull, -1, "may have some of the settings"},
        {InPlace, stop, ExitNotAccepted, "Stopped. The new module has every setting of the file"},
        {InPlace, pull, -1, "Going on as soon as the port can be opened again."},
        {"none", pull, ExitNotAccepted, "The new one is still in its initialisation state"},
        {InPlace, [](Cabinet& cabinet) { cabinet.New.PowerUp(); }, ExitSuccess, "Power the module down"}};
    for (const auto& [at, act, exit, state] : cases) {
        Cabinet cabinet(at, act);
        const SavedModule saved = {5, "8250", "", {}, {}, {{"baud", 19200.0}, {"checksum", true}}};
        const Captured end = Capture([&] { return ReplaceModule(cabinet.Session, {saved, 5}); });
        EXPECT_EQ(end.Exit, exit) << end.Err;
        EXPECT_TRUE(Contains(end.Err, state));
        EXPECT_EQ(end.Failure.empty(), exit >= 0) << end.Failure;
        EXPECT_EQ(cabinet.Written, at != Asked) << state;
        EXPECT_EQ(bool(Contains(end.Out, "Every setting is as in the file. The cal")), exit == ExitSuccess);
    }
}

TEST(ReplaceCommand, NeedsAFileAndOneOfItsModules) {
    const TestFolder folder;
    LineFile file;
    file.Modules = {{5, "8250", "", {}, {}, {{"baud", 9600.0}, {"checksum", false}}}, {6, "8410", ""}};
    const std::string text = LineFileText(file);
    const QString good = QString::fromStdString(folder.Write("a", text));
    const QString damaged = QString::fromStdString(folder.Write("b", text.substr(0, text.size() / 2)));
    ExpectWrongUse(
        {{{"replace", good}, "Give the address of the dead module"},
         {{"replace", good, "7"}, "no module at address 7 (07H), it has 5 (05H) 8250, 6 (06H) 8410."},
         {{"replace", good, "6"}, "does not tell how it is spoken to"},
         {{"replace", good, "5", "--wait", "0"}, "a time in seconds"},
         {{"replace", damaged, "5"}, "line "}});
}

} // namespace
} // namespace kavro
