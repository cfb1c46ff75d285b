#pragma once

#include "cli/row_printer.h"
#include "map/session.h"
#include "monitor/csv_log.h"
#include "monitor/module_values.h"

#include <vector>

class QCommandLineParser;

namespace kavro {

/// Forms in which values are printed.
enum class ValueForm {
    Text, ///< columns under a heading
    Csv,  ///< the lines of the monitor's log
    Json, ///< an array with an object for each value
};

/// Adds `--csv` and `--json`.
void AddValueFormOptions(QCommandLineParser& parser);

/// Reads them. Throws `RuntimeFailure` when both are given.
ValueForm ReadValueForm(const QCommandLineParser& parser);

/// Prints the values of modules as they are read. Throws `RuntimeFailure` when standard output cannot be
/// written.
class ValuePrinter {
public:
    ValuePrinter(const Session& session, ValueForm form);

    /// Prints values of entry `index`, which were read at that time; false when nobody reads standard output
    /// any more.
    bool Print(int index, const std::vector<ChannelValue>& values, const WallTime& time);

    /// Ends the output, which is whole then.
    void Close() { rows_.Close(); }

private:
    const Session& session_;
    ValueForm form_;
    RowPrinter rows_;
    bool begun_ = false;
};

} // namespace kavro
