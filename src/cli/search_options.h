#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QCommandLineParser;

namespace kavro {

/// How the modules of a line are found.
enum class SearchKind {
    Exact,   ///< address by address, at each rate, as in the main window
    Fast,    ///< rate by rate, waiting no longer than modules take to answer
    Refresh, ///< those of a map, each where the map has it
};

/// Options of `kavroctl search`.
struct SearchOptions {
    SearchKind Kind = SearchKind::Exact;
    std::int16_t HighestAddress = 255;
    std::vector<std::int16_t> BaudCodes{};        ///< to try; empty: those of the port's settings
    std::optional<std::int16_t> TimeoutMs{};      ///< nothing: that of the settings
    std::optional<std::int16_t> AnswerWithinMs{}; ///< of the fast search; nothing: what is usual
    bool OneRate = false;                         ///< only the first of them: the port keeps its own
    bool ChecksumsKnown = true;                   ///< of the map that is refreshed
    bool Json = false;
};

/// Adds the options that say what is searched, and how.
void AddSearchRangeOptions(QCommandLineParser& parser);

/// Reads them. Throws `RuntimeFailure` when one is wrong.
SearchOptions ReadSearchRange(const QCommandLineParser& parser);

/// Throws `RuntimeFailure`, which begins with `why`, when one of them is given where nothing is searched;
/// --timeout alone is in place there.
void RefuseSearchRange(const QCommandLineParser& parser, const std::string& why);

} // namespace kavro
