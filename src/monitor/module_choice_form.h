#pragma once

#include "map/session.h"

#include <QDialog>

#include <cstdint>
#include <optional>
#include <set>

class QListWidget;

namespace kavro {

/// Lets the user choose which modules of the list a monitor reads.
class ModuleChoiceForm : public QDialog {
public:
    /// Modules at the addresses `leftOut` are not ticked.
    ModuleChoiceForm(const Session& session, const std::set<std::int16_t>& leftOut, QWidget* parent);

    /// The addresses of the modules without a tick, and those of `leftOut` that the list does not have.
    std::set<std::int16_t> LeftOut() const;

private:
    void Fill();
    void TickAll(bool ticked);

    const Session& session_;
    std::set<std::int16_t> before_;
    QListWidget* list_ = nullptr;
};

/// Asks over `parent`; nothing when the user cancels.
std::optional<std::set<std::int16_t>> ChooseModules(const Session& session,
                                                    const std::set<std::int16_t>& leftOut, QWidget* parent);

} // namespace kavro
