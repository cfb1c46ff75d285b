#pragma once

#include "link/append_file.h"

namespace kavro {

/// The `FileOpener` of this system.
OpenedFile OpenAppendFile(const std::string& path, OpenAs as);

} // namespace kavro
