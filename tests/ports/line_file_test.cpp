#include "ports/line_file.h"

#include "link/runtime_failure.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstring>

namespace kavro {
namespace {

class LineFileTest : public testing::Test {
protected:
    SimulatedLine Read(const char* text) {
        QFile file(QString::fromStdString(Path));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return ReadLineFile(Path);
    }

    std::string FailureOf(const char* text) {
        try {
            Read(text);
        } catch (const RuntimeFailure& failure) {
            return failure.what();
        }
        return "none";
    }

    QTemporaryDir Folder;
    std::string Path = Folder.filePath("json").toStdString();
};

TEST_F(LineFileTest, ReadsEveryKey) {
    const SimulatedLine line = Read(R"({"seed": 4294967295, "faults": {"noise": true, "slowCharacters": 3},
        "modules": [{"model": "8250", "address": 3, "baud": 19200, "checksum": true, "initialisation": true,
                     "range": "0a", "format": 2, "revision": "B7", "faults": {"delay": 50, "refuse": true,
                     "silent": true, "wrongChecksum": true, "noCarriageReturn": true, "unplugged": true}},
                    {"address": 255, "model": "8610"}]})");
    EXPECT_TRUE(line.LineFaults.Noise);
    EXPECT_EQ(line.LineFaults.SlowCharacterMs, 3);
    ASSERT_EQ(line.Modules().size(), 2U);
    const ModuleSettings& first = line.ModuleAt(3).Settings;
    EXPECT_EQ(first.Baud, 19200);
    EXPECT_TRUE(first.Checksum && first.Initialisation);
    EXPECT_EQ(first.TypeCode, 0x0A);
    EXPECT_EQ(first.DataFormat, 2);
    EXPECT_EQ(first.Revision, "B7");
    const Faults& faults = line.ModuleAt(3).OwnFaults;
    EXPECT_EQ(faults.DelayMs, 50);
    EXPECT_TRUE(faults.Refuse && faults.Silent && faults.WrongChecksum && faults.NoCarriageReturn);
    EXPECT_TRUE(faults.Unplugged);
    EXPECT_EQ(line.ModuleAt(255).Hear("$FF2", 9600, 0), "!FF00668003") << "factory settings, own class";
}

TEST_F(LineFileTest, SaysWhatIsWrongAndWhere) {
    const struct {
        const char *Text, *Description;
    } cases[] = {
        {"{\"modules\":\n[}", "it is not JSON at offset 14 (line 2): "},
        {"", "it is not JSON at offset 0 (line 1): "},
        {"[]", "it must hold one object"},
        {"{}", "it lacks the key \"modules\"."},
        {R"({"modules": {}})", "modules must be a list"},
        {R"({"modules": [], "sed": 1})",
         "The line has the unknown key \"sed\"; known are modules, faults, seed."},
        {R"({"modules": [], "seed": -1})", "seed must be a whole number from 0 to 4294967295."},
        {R"({"modules": [], "seed": "1"})", "seed must be a whole number"},
        {R"({"modules": [], "faults": {"delay": 1.5}})", "faults.delay must be a whole number"},
        {R"({"modules": [], "faults": {"silent": 1}})", "faults.silent must be true or false."},
        {R"({"modules": [7]})", "modules[0] must be an object"},
        {R"({"modules": [{"address": 1}]})", "modules[0] lacks the key \"model\"."},
        {R"({"modules": [{"model": "8250"}]})", "modules[0] lacks the key \"address\"."},
        {R"({"modules": [{"model": "8250", "address": 1}, {"model": "8250", "address": 256}]})",
         "modules[1].address must be a whole number from 0 to 255."},
        {R"({"modules": [{"model": "8250", "address": -1}]})", "modules[0].address must be"},
        {R"({"modules": [{"model": "82\r", "address": 1}]})", "modules[0].model must be a text"},
        {R"({"modules": [{"model": 8250, "address": 1}]})", "modules[0].model must be a text"},
        {R"({"modules": [{"model": "8250", "address": 1, "baud": 14400}]})",
         "modules[0].baud must be one of"},
        {R"({"modules": [{"model": "8250", "address": 1, "range": "+8"}]})", "modules[0].range must be two"},
        {R"({"modules": [{"model": "8250", "address": 1, "range": 8}]})", "modules[0].range must be two"},
        {R"({"modules": [{"model": "8250", "address": 1, "format": 4}]})", "modules[0].format must be"},
        {R"({"modules": [{"model": "8250", "address": 1, "faults": []}]})",
         "modules[0].faults must be an object"},
    };
    const std::string head = "The line file \"" + Path + "\" cannot be used: ";
    for (const auto& [text, description] : cases)
        EXPECT_EQ(FailureOf(text).substr(0, head.size() + std::strlen(description)), head + description);
}

TEST_F(LineFileTest, NeedsARegularFile) {
    const std::pair<std::string, const char*> cases[] = {
        {Path, "there is no such file."},
        {Folder.path().toStdString(), "it is a folder; name a file."},
        {"/dev/null", "it is not a regular file."},
        {"", "there is no such file."},
    };
    for (const auto& [path, description] : cases)
        try {
            ReadLineFile(path);
            FAIL() << path;
        } catch (const RuntimeFailure& failure) {
            EXPECT_EQ(failure.what(), "The line file \"" + path + "\" cannot be used: " + description);
        }
}

} // namespace
} // namespace kavro
