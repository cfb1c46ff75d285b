#pragma once

#include <string>

namespace kavro {

/// The user's full name as the system has it, else the login name; UTF-8, empty when there is none.
std::string UserName();

} // namespace kavro
