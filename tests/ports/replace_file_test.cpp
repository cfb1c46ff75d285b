#include "ports/replace_file.h"

#include "support/failure_text.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <sys/resource.h>

namespace kavro {
namespace {

namespace fs = std::filesystem;

class ReplaceFileTest : public testing::Test {
protected:
    static std::string Content(const fs::path& path) {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }

    static std::ptrdiff_t Entries(const fs::path& folder) {
        return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    }

    QTemporaryDir Temporary;
    fs::path Folder = Temporary.path().toStdString();
};

TEST_F(ReplaceFileTest, MakesFoldersAndReplaces) {
    const fs::path file = Folder / "new" / "f\xc3\xbcr" / "COM.CFG";
    ReplaceFile(file, "100\n2\n");
    EXPECT_EQ(Content(file), "100\n2\n");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    ReplaceFile(file, "");
    EXPECT_EQ(Content(file), "");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(Entries(file.parent_path()), 1);
}

TEST_F(ReplaceFileTest, FollowsLinks) {
    std::ofstream(Folder / "target") << "old";
    fs::create_symlink(Folder / "target", Folder / "link");
    ReplaceFile(Folder / "link", "new");
    EXPECT_TRUE(fs::is_symlink(Folder / "link"));
    EXPECT_EQ(Content(Folder / "target"), "new");
}

TEST_F(ReplaceFileTest, WhatCannotBeReplaced) {
    std::ofstream(Folder / "file") << "old";
    fs::create_directory(Folder / "folder");
    for (const fs::path& path : {Folder / "folder", Folder / "file" / "below", fs::path("/dev/null")}) {
        const std::string told = FailureText([&] { ReplaceFile(path, "new"); });
        EXPECT_NE(told.find(path.string()), std::string::npos) << told;
    }
    EXPECT_EQ(Content(Folder / "file"), "old");
    EXPECT_TRUE(fs::is_directory(Folder / "folder"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(ReplaceFileTest, FullDiskLeavesTheOldFileWhole) {
    const fs::path file = Folder / "admin.map";
    ReplaceFile(file, "old");
    // A limit on the size of files makes writing fail as a full disk does.
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {100'000, before.rlim_max};
    const auto ignoring = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string told = FailureText([&] { ReplaceFile(file, std::string(1'000'000, 'x')); });
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, ignoring);
    EXPECT_NE(told.find(file.string()), std::string::npos);
    EXPECT_EQ(Content(file), "old");
    EXPECT_EQ(Entries(Folder), 1); // nothing half-written stays behind
}

} // namespace
} // namespace kavro
