#include "link/same_file.h"

#include <filesystem>
#include <system_error>

namespace kavro {

bool SameFile(const std::string& first, const std::string& second) {
    std::error_code error;
    return std::filesystem::equivalent(first, second, error);
}

} // namespace kavro
