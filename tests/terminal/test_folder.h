#pragma once

#include "support/failure_text.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace kavro {

/// A folder of its own for a test; gone with its content at the end.
class TestFolder {
public:
    TestFolder() { std::filesystem::create_directories(path_); }
    ~TestFolder() { std::filesystem::remove_all(path_); }

    std::string Path(const std::string& name = {}) const { return path_ + name; }

    /// Writes a file; returns its path.
    std::string Write(const std::string& name, const std::string& content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

    std::string Read(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// How many files and folders it holds.
    std::ptrdiff_t Entries() const {
        return std::distance(std::filesystem::directory_iterator(path_),
                             std::filesystem::directory_iterator());
    }

private:
    std::string path_ = testing::TempDir() + "kavro-terminal-" + std::to_string(getpid()) + "/";
};

} // namespace kavro
