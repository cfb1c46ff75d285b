#pragma once

#include "project/restore.h"

#include <QTreeWidget>

namespace kavro {

/// The differences of a line, module by module, each with a tick where it can be written; apart below them
/// what waits for the initialisation state, and the modules that are left alone.
class DifferenceTree : public QTreeWidget {
public:
    DifferenceTree();

    /// Shows a comparison; all that can be written is ticked.
    void ShowAll(const LineComparison& comparison);

    /// The differences that are ticked.
    Choice Ticked() const;

    struct Count {
        std::size_t Modules = 0, Settings = 0;
    };
    Count TickedCount() const;

private:
    void AddModule(const ModuleComparison& module);
    void AddAwaiting(const LineComparison& comparison);
    void AddLeftAlone(const LineComparison& comparison);
    QTreeWidgetItem* AddTop(const QString& text);
};

} // namespace kavro
