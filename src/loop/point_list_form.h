#pragma once

#include "loop/loop_results.h"

#include <QTableWidget>

#include <functional>

namespace kavro {

/// The channels of a loop check with their results. Enter, or a double click, calls `chosen` with a row.
class PointList : public QTableWidget {
public:
    PointList(const LoopRecord& record, std::function<void(int entry)> chosen);

    /// Shows what is known now, with the entry in work as the current row.
    void Show(int current);

private:
    const LoopRecord& record_;
};

} // namespace kavro
