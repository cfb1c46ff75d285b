#include "ports/line_file.h"
#include "ports/replace_file.h"
#include "ports/settings_folder.h"
#include "support/failure_text.h"
#include "terminal/test_folder.h"

#include <QByteArray>

#include <csignal>
#include <filesystem>

#include <sys/resource.h>

namespace kavro {
namespace {

namespace fs = std::filesystem;

class FilesTest : public testing::Test {
protected:
    std::ptrdiff_t Entries() const {
        return std::distance(fs::directory_iterator(Folder.Path()), fs::directory_iterator());
    }

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
}

TEST_F(FilesTest, FullDiskLeavesTheOldFileWhole) {
    Folder.Write("file", "old");
    // A limit on the size of files makes writing fail as a full disk does.
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {100'000, before.rlim_max};
    const auto ignoring = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string told = FailureText([&] { ReplaceFile(File, std::string(1'000'000, 'x')); });
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, ignoring);
    EXPECT_TRUE(Contains(told, File));
    EXPECT_EQ(Folder.Read("file"), "old");
    EXPECT_EQ(Entries(), 1); // nothing half-written stays behind
}

TEST(SettingsFolder, FollowsTheDesktopRules) {
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    const std::string home = qgetenv("HOME").toStdString() + "/.config/kavro/";
    for (const auto& [value, folder] :
         {std::pair{"/etc/own/", std::string("/etc/own/kavro/")}, {"", home}, {"relative", home}}) {
        qputenv("XDG_CONFIG_HOME", value);
        EXPECT_EQ(ConfigFilePath(false), folder + "COM.CFG");
        EXPECT_EQ(PortsFilePath(true), folder + "demo/ports.ini");
    }
    qputenv("XDG_CONFIG_HOME", before);
}

TEST_F(FilesTest, LineFileReadsEveryKey) {
    Folder.Write("file", R"({"seed": 4294967295, "faults": {"noise": true, "slowCharacters": 3, "echo": true},
        "modules": [{"model": "8250", "address": 3, "baud": 19200, "checksum": true, "initialisation": true,
                     "range": "0a", "format": 2, "revision": "B7", "faults": {"delay": 50, "refuse": true,
                     "silent": true, "wrongChecksum": true, "noCarriageReturn": true, "unplugged": true,
                     "babble": true, "damage": 0.25, "late": {"share": 0.5, "min": 100, "max": 400}}},
                    {"address": 255, "model": "8610"}]})");
    const SimulatedLine line = ReadLineFile(File);
    EXPECT_TRUE(line.LineFaults.Noise && line.LineFaults.Echo);
    EXPECT_EQ(line.LineFaults.SlowCharacterMs, 3);
    const ModuleSettings& first = line.ModuleAt(3).Settings;
    EXPECT_EQ(std::tuple(first.Baud, first.TypeCode, first.DataFormat), std::tuple(19200, 0x0A, 2));
    EXPECT_TRUE(first.Checksum && first.Initialisation);
    EXPECT_EQ(first.Revision, "B7");
    const Faults& faults = line.ModuleAt(3).OwnFaults;
    EXPECT_EQ(faults.DelayMs, 50);
    EXPECT_TRUE(faults.Refuse && faults.Silent && faults.WrongChecksum && faults.NoCarriageReturn);
    EXPECT_TRUE(faults.Unplugged && faults.Babble);
    EXPECT_EQ(std::tuple(faults.DamageShare, faults.Late.Share, faults.Late.MinMs, faults.Late.MaxMs),
              std::tuple(0.25, 0.5, 100, 400));
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
        {R"({"modules": [{"address": 1}]})", "modules[0] lacks the key \"model\"."},
    };
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
        return FailureText([this] { ReadLineFile(File); });
    };
    for (const auto& [text, piece] : cases)
        EXPECT_TRUE(Contains(told(text), "\"" + File + "\" cannot be used: " + piece));
    const std::string module = R"({"modules": [{"model": "8250", "address": 1}, {"model": )";
    for (const auto& [text, piece] : moduleCases)
        EXPECT_TRUE(Contains(told(module + text + "}]}"), std::string("modules[1].") + piece));
}

} // namespace
} // namespace kavro
