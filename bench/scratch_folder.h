#pragma once

#include "link/runtime_failure.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace kavro {

/// A folder below the system's temporary one; gone with its content at the end.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kavro-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw RuntimeFailure("No temporary folder can be made.");
        Path = name;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(Path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string Path;
};

} // namespace kavro
