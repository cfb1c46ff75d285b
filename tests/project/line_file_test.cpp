#include "project/backup.h"
#include "project/changed_line.h"
#include "project/open_line_file.h"
#include "project/restore_journal.h"
#include "terminal/test_folder.h"

#include <gtest/gtest.h>

#include <regex>

namespace kavro {
namespace {

constexpr const char* Text = R"({
  "format": "kavro-line",
  "version": 1,
  "name": "Kessel \"Süd\"",
  "time": "2026-03-02T14:05:09Z",
  "program": "4.01",
  "modules": [
    {
      "address": 5,
      "model": "8250",
      "firmware": "A2.5",
      "tag": "TT-100",
      "note": "two\nlines",
      "channels": {
        "0": {"tag": "TT-101", "note": "", "colour": [1, 2.50, null]}
      },
      "settings": {
        "baud": 9600,
        "checksum": false,
        "range": "08",
        "format": "Engineering Units",
        "channels": [0, 1, 4],
        "x-house": {"a": true}
      },
      "cabinet": "C7"
    }
  ],
  "site": {"id": 12345678901234567890}
}
)";

std::string Replaced(const std::string& piece, const std::string& by) {
    std::string text = Text;
    const auto place = text.find(piece);
    return place == std::string::npos ? "no such piece: " + piece : text.replace(place, piece.size(), by);
}

// What is written reads as it was, keys that nobody knows included.
TEST(LineFileText, IsStableAndKeepsWhatItDoesNotKnow) {
    EXPECT_EQ(LineFileText(ReadLineFileText(Text)), Text);
    const LineFile shuffled = ReadLineFileText(
        R"({"site": 1, "modules": [{"settings": {"Range": "08", "baud": 9600.0}, "model": "8250", "address": 5}],
            "version": 1, "format": "kavro-line"})");
    EXPECT_EQ(LineFileText(ReadLineFileText(LineFileText(shuffled))), LineFileText(shuffled));
    EXPECT_EQ(std::get<double>(*SettingIn(shuffled.Modules[0], "baud")), 9600);
}

TEST(LineFileText, TellsTheLineOfWhatIsWrong) {
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"kavro-line", "kavro-map", "line 2: this is no line file"},
        {"1,\n  \"name\"", "2,\n  \"name\"", "line 3: a newer version of this program"},
        {"\"address\": 5", "\"address\": 256", "line 9: \"address\" must be a whole number from 0 to 255."},
        {"\"address\": 5,", "", "line 8: \"address\" must be"},
        {"\"08\"", "\"ZZ\"", "line 20: 'ZZ' does not fit range"},
        {"\"08\"", "8", "line 20: '8' does not fit range"},
        {"\"Engineering Units\"", "0", "line 21: '0' does not fit format"},
        {"9600", "9601", "line 18: '9601' is not a baud rate"},
        {"[0, 1, 4]", "[0, 8]", "line 22: '0,8' does not fit channels"},
        {"[0, 1, 4]", "[0, 1.5]", "line 22: the channels must be a list of whole numbers"},
        {"\"range\"", "\"low-alarm\"", "line 20: a module 8250 has no setting \"low-alarm\""},
        {"\"range\"", "\"model\"", "line 20: a module 8250 has no setting \"model\""},
        {"\"0\": {", "\"first\": {", "line 15: 'first' is no channel"},
        {"\"tag\": \"TT-100\"", "\"tag\": 100", "line 12: \"tag\" must be a text."},
        {"    }\n  ],", "    }, {\"address\": 5}\n  ],", "line 26: two modules have the address 5 (05H)"},
        {"\"note\": \"two", "\"tag\": \"two", "line 13: \"tag\" stands here and in line 12"},
        {"\n  ],\n", "", "line 26: this is not JSON"},
    };
    for (const auto& [piece, by, told] : cases)
        EXPECT_TRUE(Contains(FailureText([&] { ReadLineFileText(Replaced(piece, by)); }), told)) << told;
    const std::string whole = Text;
    for (std::size_t length = 0; length + 2 < whole.size(); ++length)
        EXPECT_THROW(ReadLineFileText(whole.substr(0, length)), RuntimeFailure) << length;
    TestFolder folder;
    EXPECT_TRUE(Contains(FailureText([&] { LoadLineFile(folder.Path()); }), "it is a folder"));
}

TEST(LineFileText, KeepsTagsWhenTheLineIsReadAgain) {
    const LineFile before = ReadLineFileText(Text);
    LineFile file = ReadLineFileText(Replaced("\"08\"", "\"09\""));
    file.Modules[0].Tags = {};
    file.Modules[0].Channels.clear();
    file.Modules[0].Others = file.Others = {};
    KeepWhatIsTheUsers(file, before);
    EXPECT_EQ(LineFileText(file), Replaced("\"08\"", "\"09\""));
    EXPECT_EQ(LostFrom(before, file), Lines{});
    file.Modules[0].Settings.pop_back();
    EXPECT_EQ(LostFrom(before, file), Lines{"Of the TT-100, 8250 at address 5 (05H) the file had channels."});
    file.Modules.clear();
    EXPECT_EQ(LostFrom(before, file), Lines{"The TT-100, 8250 at address 5 (05H) is no longer in the list."});
}

// Whatever writes the file: records stay, newer ones too.
TEST(LineFileText, KeepsTheHistoryOfAModule) {
    TestFolder folder;
    WorkOnLine line(EachFamily());
    const std::string record = R"({"format": "kavro-calibration", "version": 9, "full_scale": 10.50})";
    const std::string history =
        "},\n      \"history\": [\n        " + record + "\n      ],\n      \"cabinet\"";
    const std::string path = folder.Write("h", Replaced("},\n      \"cabinet\"", history));
    EXPECT_EQ(LineFileText(LoadLineFile(path)), folder.Read("h"));
    LineFile again = ReadLineFileText(Replaced("\"08\"", "\"09\""));
    KeepWhatIsTheUsers(again, LoadLineFile(path));
    EXPECT_EQ(again.Modules[0].History, Lines{record});
    ShowTagsOf(line.Session, path, LoadLineFile(path));
    line.Session.Tags.Keep(5, line.Session.Tags.Modules.at(5));
    line.Session.Tags.AppendHistory(5, "8250", R"({"result": "pass"})");
    EXPECT_EQ(LoadLineFile(path).Modules[0].History, (Lines{record, R"({"result": "pass"})"}));
    const std::tuple<std::int16_t, const char*, const char*> wrongs[] = {
        {5, "8260", "has a 8250 at address 5 (05H) and not a 8260"}, {6, "8250", "no longer has a module"}};
    for (const auto& [address, model, told] : wrongs)
        EXPECT_TRUE(
            Contains(FailureText([&] { line.Session.Tags.AppendHistory(address, model, "{}"); }), told));
    for (const char* wrong : {"1", "[1]"})
        EXPECT_TRUE(Contains(FailureText([&] {
                                 ReadLineFileText(Replaced("\"cabinet\"",
                                                           std::string("\"history\": ") + wrong + ", \"x\""));
                             }),
                             "line 25: "));
}

TEST(OpenLineFile, ChangesTagsAndNothingElse) {
    TestFolder folder;
    WorkOnLine line(EachFamily());
    const std::string path = folder.Write("line.kavro.json", Text);
    ShowTagsOf(line.Session, path, LoadLineFile(path));
    ModuleTags tags = line.Session.Tags.Modules.at(5);
    EXPECT_EQ(tags.Channels.at(0).Tag, "TT-101");
    tags.Channels.clear();
    tags.Channels[3].Note = "spare";
    tags.Module.Tag = "TT-200";
    line.Session.Tags.Keep(5, tags);
    std::string expected = Replaced("TT-100", "TT-200");
    expected.replace(expected.find("\"TT-101\""), 8, "\"\"");
    expected.replace(expected.find("null]}"), 6,
                     "null]},\n        \"3\": {\"tag\": \"\", \"note\": \"spare\"}");
    EXPECT_EQ(folder.Read("line.kavro.json"), expected);
    std::filesystem::remove(path);
    EXPECT_THROW(line.Session.Tags.Keep(5, {}), RuntimeFailure);
    EXPECT_EQ(line.Session.Tags.Modules.at(5), tags);
}

// What a module does not tell is left out and named; the rest is there.
TEST(ReadLine, SavesWhatIsTold) {
    WorkOnLine line(EachFamily());
    line.Line.ModuleAt(1).CommandFaults = [](std::string_view command) {
        return Faults{.Silent = command == "@01RL"};
    };
    line.Line.ModuleAt(2).CommandFaults = [](std::string_view command) {
        return Faults{.Refuse = command == "$026"};
    };
    line.Line.ModuleAt(4).OwnFaults.Silent = true;
    line.Line.Add(MakeModule("8999", 30));
    line.ListAll();
    const Backup backup = ReadLine(line.Work, "line");
    EXPECT_EQ(backup.Incomplete,
              (Lines{"The 8220 at address 1 (01H) did not tell its low-alarm; the file has the rest.",
                     "The 8250 at address 2 (02H) did not tell its channels; the file has the rest.",
                     "The 8320 at address 4 (04H) does not answer; none of its settings are in the file."}));
    EXPECT_EQ(SettingIn(backup.File.Modules[0], "low-alarm"), nullptr);
    EXPECT_NE(SettingIn(backup.File.Modules[0], "high-alarm"), nullptr);
    EXPECT_EQ(SettingIn(backup.File.Modules[1], "channels"), nullptr);
    EXPECT_EQ(backup.File.Modules[9].Settings.size(), 2U); // baud and checksum of an unknown model
    EXPECT_EQ(backup.File.Modules[2].Firmware, "A1.0");
}

// A journal that was cut off anywhere, its last line too.
TEST(RestoreJournal, IsReadWhereverItWasCutOff) {
    TestFolder folder;
    const std::string head =
        R"({"format": "kavro-restore-journal", "version": 1, "modules": [{"address": 5, "model": "8250"}]})";
    const std::string entries = "\n{\"event\": \"begin\", \"address\": 5}\n"
                                "{\"event\": \"send\", \"address\": 5, \"command\": \"%0505080600\"}\n"
                                "{\"event\": \"outcome\", \"address\": 5, \"outcome\": \"refused\"}\n"
                                "{\"event\": \"end\", \"address\": 5, \"as_wanted\": false}\n";
    const std::string told = " The 8250 at address 5 (05H) was being written";
    const std::pair<std::size_t, std::string> cases[] = {
        {1, ""},
        {20, ""},
        {60, told + "; nothing had been sent to it."},
        {100, told + "; last it was sent %0505080600, and what came of that is not known."},
        {150, told + "; last it was sent %0505080600 (refused)."},
        {entries.size(), ""}};
    for (const auto& [length, end] : cases) {
        const std::string path = folder.Write("j", head + entries.substr(0, length));
        const std::string text = CutOffText(ReadJournal(path).value());
        EXPECT_TRUE(text.ends_with("back." + end) || length == entries.size()) << text;
    }
    EXPECT_TRUE(Contains(CutOffText(*ReadJournal(folder.Path("j"))), "1 of them without having everything"));
    for (const char* wrong : {"{}\n", "x\n", "{\"format\": \"kavro-line\", \"version\": 1}\n"})
        EXPECT_TRUE(Contains(FailureText([&] { ReadJournal(folder.Write("j", wrong)); }), "line 1: "));
    EXPECT_FALSE(ReadJournal(folder.Path("none")));
}

} // namespace
} // namespace kavro
