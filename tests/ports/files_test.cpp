#include "ports/port_registry.h"
#include "ports/preferences_file.h"
#include "ports/replace_file.h"
#include "ports/settings_folder.h"
#include "ports/simulated_line_file.h"
#include "support/full_disk.h"

#include <QByteArray>

#include <cstring>

#include <sys/file.h>
#include <sys/wait.h>

namespace kavro {
namespace {

namespace fs = std::filesystem;

class FilesTest : public testing::Test {
protected:
    TestFolder Folder;
    std::string File = Folder.Path("file");
};

TEST_F(FilesTest, ReplacingMakesFoldersKeepsRightsAndFollowsLinks) {
    const fs::path file = Folder.Path("new/f\xc3\xbcr/COM.CFG");
    const fs::path link = Folder.Path("link");
    ReplaceFile(file, "100\n2\n");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(file, link);
    EXPECT_EQ(Folder.Read("link"), "100\n2\n");
    ReplaceFile(link, "");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(Folder.Read("link"), "");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(FilesTest, WhatCannotBeReplaced) {
    Folder.Write("file", "old");
    for (const std::string& path : {Folder.Path(), Folder.Path("file/below"), std::string("/dev/null")})
        EXPECT_TRUE(Contains(FailureText([&] { ReplaceFile(path, "new"); }), path));
    EXPECT_EQ(Folder.Read("file"), "old");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    fs::create_symlink("loop", Folder.Path("loop"));
    const std::string reason = "loop cannot be saved: " + std::string(strerror(ELOOP));
    EXPECT_TRUE(Contains(FailureText([&] { ReplaceFile(Folder.Path("loop"), "new"); }), reason));
}

TEST(FullDisk, LeavesTheOldFilesWhole) {
    FullDisk disk;
    const std::string file = disk.Path("COM.CFG");
    const auto devices = [&] { return PortRegistry(disk.Path("ports.ini"), {}, [] { return nullptr; }); };
    PortRegistry registry = devices();
    registry.Assign(1, "/dev/old");
    registry.Save();
    ReplaceFile(file, "old");
    disk.Fill();
    registry.Assign(1, "/dev/new");
    const std::pair<std::string, std::string> saved[] = {
        {file, FailureText([&] { ReplaceFile(file, "new"); })}, // so short that it is no matter of its writes
        {file, FailureText([&] { ReplaceFile(file, std::string(1'000'000, 'x')); })},
        {disk.Path("ports.ini"), FailureText([&] { registry.Save(); })}};
    for (const auto& [path, told] : saved)
        EXPECT_TRUE(Contains(told, "The file " + path + " cannot be saved: " + disk.Reason() + "."));
    EXPECT_EQ(disk.Read("COM.CFG"), "old");
    EXPECT_EQ(devices().Device(1), "/dev/old");
    EXPECT_EQ(disk.Entries(), 2) << "nothing half-written stays behind";
    disk.MakeRoom();
    ReplaceFile(file, "new");
    registry.Save();
    EXPECT_EQ(disk.Read("COM.CFG"), "new");
    EXPECT_EQ(devices().Device(1), "/dev/new");
    EXPECT_EQ(disk.Entries(), 2) << "no lock either";
}

TEST_F(FilesTest, ClearsAwayWhatAKilledSaveLeft) {
    Folder.Write("file", "old");
    const pid_t child = fork();
    if (child == 0) { // killed in the middle of writing
        const rlimit small = {1000, RLIM_INFINITY}, none = {0, 0};
        setrlimit(RLIMIT_CORE, &none);
        setrlimit(RLIMIT_FSIZE, &small);
        std::signal(SIGXFSZ, SIG_DFL);
        ReplaceFile(File, std::string(1'000'000, 'x'));
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(Folder.Read("file"), "old");
    EXPECT_EQ(Folder.Entries(), 2);

    // What another program is just writing stays, and what is no temporary file of this one.
    const char* const others[] = {"file.1-2.kavro-tmp", "file.backup", "file.1x.kavro-tmp", "file.kavro-tmp",
                                  "file2.1-2.kavro-tmp"};
    for (const char* name : others)
        Folder.Write(name, "");
    const int writing = open(Folder.Path(others[0]).c_str(), O_WRONLY);
    ASSERT_EQ(flock(writing, LOCK_EX), 0);
    ReplaceFile(File, "new");
    EXPECT_EQ(Folder.Read("file"), "new");
    EXPECT_EQ(Folder.Entries(), 6);
    for (const char* name : others)
        EXPECT_TRUE(fs::exists(Folder.Path(name))) << name;
    close(writing);
    ReplaceFile(File, "new");
    EXPECT_EQ(Folder.Entries(), 5);
}

TEST(SettingsFolder, FollowsTheDesktopRules) {
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    const std::string home = qgetenv("HOME").toStdString() + "/.config/kavro/";
    for (const auto& [value, folder] :
         {std::pair{"/etc/own/", std::string("/etc/own/kavro/")}, {"", home}, {"relative", home}}) {
        qputenv("XDG_CONFIG_HOME", value);
        EXPECT_EQ(ConfigFilePath(false), folder + "COM.CFG");
        EXPECT_EQ(PortsFilePath(true), folder + "demo/ports.ini");
        EXPECT_EQ(MapFilePath(false), "admin.map");
        EXPECT_EQ(MapFilePath(true), folder + "demo/admin.map");
    }
    qputenv("XDG_CONFIG_HOME", before);
}

TEST_F(FilesTest, PreferencesComeBackAndNonsenseCountsAsNotThere) {
    const std::pair<const char*, Preferences> files[] = {
        {"", {}},
        {"[General]\nFastSearch=true\nAnswerWithin=5\n", {true, 5}},
        {"[General]\nFastSearch=perhaps\nAnswerWithin=1001\n", {}},
        {"FastSearch=true\nAnswerWithin=4\n\n[Other]\nAnswerWithin=7", {true, 30}},
        {"[General]\nAnswerWithin=-30\nFastSearch=", {}},
        {"[General]\nMonitorLeftOut=7, x, 300,8\nMonitorTicked=\"5/ 5/0 256/1 5/0\"\nMonitorSpan=0\n"
         "MonitorThresholds=\"5/0:3..1 5/1:..\u00fc : 5/2:-1..\"\nMonitorInterval=-1\nMonitorNewFile=year\n",
         {.Monitor = {.LeftOut = {7, 8}, .Thresholds = {{{5, "2"}, {.Low = -1}}}, .Ticked = {{5, "0"}}}}},
        {"\x01\xff[[=", {}}};
    EXPECT_EQ(ReadPreferences(Folder.Path("none")), Preferences{});
    for (const auto& [text, preferences] : files)
        EXPECT_EQ(ReadPreferences(Folder.Write("file", text)), preferences) << text;
    Folder.Write("file", "[General]\nLater=x\nAnswerWithin=7\n[Other]\nFastSearch=y\n");
    const Preferences chosen = {.FastSearch = true,
                                .AnswerWithin = 1000,
                                .AskBeforeDriving = true,
                                .LineFile = "/a b/\"\u00fc\", 1.json",
                                .Record = {"J. \u00d6, x", "no. \"7\"", "2027-03-31", 0.25, "/a b/r"},
                                .Monitor = {.IntervalMs = 0,
                                            .SpanMinutes = 1440,
                                            .LeftOut = {0, 255},
                                            .Thresholds = {{{5, "0"}, {1e-9, 1.5}}, {{6, "A"}, {{}, -2}}},
                                            .NewFile = NewLogFile::EachDay,
                                            .Ticked = {{9, "IN"}, {5, "0"}}}};
    SavePreferences(File, chosen);
    EXPECT_EQ(ReadPreferences(File), chosen);
    EXPECT_TRUE(Contains(Folder.Read("file"), "Later=x\n[Other]\nFastSearch=y\n")) << Folder.Read("file");
    EXPECT_TRUE(Contains(FailureText([&] { SavePreferences(Folder.Path(), {}); }), Folder.Path()));
}

TEST_F(FilesTest, LineFileReadsEveryKey) {
    Folder.Write("file", R"({"seed": 4294967295, "faults": {"noise": true, "slowCharacters": 3, "echo": true},
        "modules": [{"model": "8250", "address": 3, "baud": 19200, "checksum": true, "initialisation": true,
                     "range": "0a", "format": 2, "revision": "B7", "faults": {"delay": 50, "refuse": true,
                     "silent": true, "wrongChecksum": true, "noCarriageReturn": true, "unplugged": true,
                     "babble": true, "damage": 0.25, "late": {"share": 0.5, "min": 100, "max": 400}}},
                    {"address": 255, "model": "8610"}]})");
    const SimulatedLine line = ReadSimulatedLine(File);
    EXPECT_TRUE(line.LineFaults.Noise && line.LineFaults.Echo);
    EXPECT_EQ(line.LineFaults.SlowCharacterMs, 3);
    const ModuleSettings& first = line.ModuleAt(3).Settings;
    EXPECT_EQ(std::tuple(first.Baud, first.TypeCode, first.DataFormat, first.Revision),
              std::tuple(19200, 0x0A, 2, "B7"));
    EXPECT_TRUE(first.Checksum && first.Initialisation);
    const Faults& faults = line.ModuleAt(3).OwnFaults;
    EXPECT_TRUE(faults.Refuse && faults.Silent && faults.WrongChecksum && faults.NoCarriageReturn);
    EXPECT_TRUE(faults.Unplugged && faults.Babble);
    EXPECT_EQ(std::tuple(faults.DelayMs, faults.DamageShare, faults.Late.Share, faults.Late.MinMs,
                         faults.Late.MaxMs),
              std::tuple(50, 0.25, 0.5, 100, 400));
    EXPECT_EQ(line.ModuleAt(255).Hear("$FF2", 9600, 0), "!FF00668003") << "factory settings, own class";
}

TEST_F(FilesTest, LineFileSaysWhatIsWrongAndWhere) {
    const std::pair<const char*, const char*> cases[] = {
        {"{\"modules\":\n[}", "it is not JSON at offset 14 (line 2): "},
        {"", "it is not JSON at offset 0 (line 1): "},
        {"{}", "it lacks the key \"modules\"."},
        {R"({"modules": {}})", "modules must be a list"},
        {R"({"modules": [], "sed": 1})",
         "The line has the unknown key \"sed\"; known are modules, faults, seed."},
        {R"({"modules": [], "seed": -1})", "seed must be a whole number from 0 to 4294967295."},
        {R"({"modules": [], "faults": {"delay": 1.5}})", "faults.delay must be a whole number"},
        {R"({"modules": [], "faults": {"silent": 1}})", "faults.silent must be true or false."},
        {R"({"modules": [], "faults": {"damage": 1.1}})", "faults.damage must be a number from 0 to 1."},
        {R"({"modules": [], "faults": {"late": {"min": 2, "max": 1}}})", "faults.late must be from a"},
        {R"({"modules": [7]})", "modules[0] must be an object"},
        {R"({"modules": [{"address": 1}]})", "modules[0] lacks the key \"model\"."}};
    const std::pair<const char*, const char*> moduleCases[] = {
        {R"("8250", "address": 256)", "address must be a whole number from 0 to 255."},
        {R"("82\r", "address": 1)", "model must be a text"},
        {R"("8250", "address": 1, "baud": 14400)", "baud must be one of"},
        {R"("8250", "address": 1, "range": "+8")", "range must be two"},
        {R"("8250", "address": 1, "format": 4)", "format must be"},
        {R"("8250", "address": 1, "faults": [])", "faults must be an object"},
        {R"("8250", "address": 1, "faults": {"echo": true})", "faults.echo is no fault of a module"}};
    const auto told = [this](const std::string& text) {
        Folder.Write("file", text);
        return FailureText([this] { ReadSimulatedLine(File); });
    };
    for (const auto& [text, piece] : cases)
        EXPECT_TRUE(Contains(told(text), "\"" + File + "\" cannot be used: " + piece));
    const std::string module = R"({"modules": [{"model": "8250", "address": 1}, {"model": )";
    for (const auto& [text, piece] : moduleCases)
        EXPECT_TRUE(Contains(told(module + text + "}]}"), std::string("modules[1].") + piece));
}

} // namespace
} // namespace kavro
