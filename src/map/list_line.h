#pragma once

#include "map/session.h"

#include <string>
#include <string_view>

namespace kavro {

/// Heading of the module list; the columns of every list line stand under it.
inline constexpr const char* ListHeading = "Address     Model    BaudRate    Format    Remark";

/// A model text as it is shown: 6 characters of printable ASCII, any other character as "?".
std::string ShownModel(const std::string& model);

/// What stands behind the line of a module that was not understood wholly, and of one that did not answer, in
/// a list that is printed.
inline constexpr std::string_view IncompleteMark = "   incomplete";
inline constexpr std::string_view NoAnswerMark = "   no answer";

/// The list line of a module: columns of fixed width under `ListHeading`, "*" before one in its
/// `initialisation` state.
std::string ListLine(const ModuleRecord& record, bool initialisation);

/// The list line of entry `index`. Bounds are checked.
std::string BuildListLine(const Session& session, int index);

/// The line of entry `index` in `Session::Device` as a window shows it: one that no longer answers is marked
/// by "no answer" behind it.
std::string ShownLine(const Session& session, int index);

} // namespace kavro
