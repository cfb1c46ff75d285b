#include "terminal/batch_file.h"

#include "terminal/command_log.h"
#include "terminal/test_folder.h"

#include <sys/stat.h>

#include <vector>

namespace kavro {
namespace {

using Lines = std::vector<std::string>;

Lines ReadAll(BatchFile& file) {
    Lines lines;
    while (!file.AtEnd())
        lines.push_back(file.ReadLine());
    return lines;
}

TEST(BatchFile, ReadsLinesWhateverTheirEnds) {
    const TestFolder folder;
    const std::pair<std::string, Lines> cases[] = {
        {"", {}},
        {"\r\n", {""}},
        {"$012", {"$012"}},
        {"$012\r\n$022\r\n", {"$012", "$022"}},
        {"$012\n\n$022", {"$012", "", "$022"}},
        {"$012\r$022\r", {"$012", "$022"}},
        {"a\n\r\nb", {"a", "", "b"}},
        {"\xEF\xBB\xBF$012\r\n", {"$012"}},
        {"\xEF\xBB\xBF", {}},
        {"\xEF\xBB", {"\xEF\xBB"}},
        {std::string("a\0b \xFF\n", 6), {std::string("a\0b \xFF", 5)}}};
    for (const auto& [content, lines] : cases) {
        BatchFile file;
        file.Open(folder.Write("batch", content));
        EXPECT_EQ(ReadAll(file), lines) << content;
        file.Rewind();
        file.Skip(1);
        EXPECT_EQ(ReadAll(file).size(), lines.empty() ? 0 : lines.size() - 1) << content;
        EXPECT_TRUE(file.AtEnd());
        file.Skip(5); // beyond the end
    }
}

TEST(BatchFile, RefusesWhatCannotBeRead) {
    const TestFolder folder;
    BatchFile file;
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    for (const std::string& path : {folder.Path(), folder.Path("missing"), folder.Path("pipe")})
        EXPECT_NE(FailureText([&] { file.Open(path); }), "") << path;
    file.Open(folder.Write("huge", std::string(32768, 'a')));
    EXPECT_NE(FailureText([&] { file.ReadLine(); }), "");
}

TEST(CommandLog, HoldsEachCommandAtOnceAndOpensAgainAfterAFailure) {
    const TestFolder folder;
    CommandLog log;
    log.Write("$002"); // no file yet
    EXPECT_NE(FailureText([&] { log.Open(folder.Path()); }), "");
    log.Open("/dev/full");
    EXPECT_NE(FailureText([&] { log.Write("$012"); }).find("No space left"), std::string::npos);
    log.Open(folder.Write("log", "old content\n"));
    EXPECT_EQ(folder.Read("log"), "");
    log.Write("  $012 ");
    log.Write("");
    EXPECT_EQ(folder.Read("log"), "$012\n\n"); // although it is still open
}

} // namespace
} // namespace kavro
