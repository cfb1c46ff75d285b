#pragma once

#include "map/session.h"
#include "project/line_file.h"

#include <string>

namespace kavro {

/// Makes a line file the one that is open: its tags are shown and can be changed. The session's list stays.
void ShowTagsOf(Session& session, const std::string& path, const LineFile& file);

/// The same, and remembers it for the next start. Throws `RuntimeFailure` when that cannot be saved; it is
/// open then all the same.
void OpenLineFile(Session& session, const std::string& path, const LineFile& file);

/// Shows the tags of the line file that was open last, if there was one. Throws `RuntimeFailure` when it is
/// gone or damaged.
void ReopenLineFile(Session& session);

/// No line file is open any more, nor at the next start. Throws `RuntimeFailure` when that cannot be saved.
void CloseLineFile(Session& session);

/// Gives a module of the file at `path`, as it is on the disk now, other tags. Throws `RuntimeFailure` when
/// the file cannot be read or written, or no longer has the module; it is then as it was.
void WriteTags(const Session& session, const std::string& path, std::int16_t address, const ModuleTags& tags);

} // namespace kavro
