#pragma once

#include "diag/panel_form.h"
#include "map/module_command.h"
#include "ui/warning_sign.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace kavro {

class OpeningState;

/// Something that a panel reads in every tick, by one transaction.
struct PanelRead {
    QString What; ///< for the user: "Levels"
    std::function<Answer()> Read;
    std::function<void(bool stale)> Show; ///< shows what was read last; stale: it is not of this tick
    bool Once = false;                    ///< read until it has been answered, and then never again
};

/// What the panels that drive a module share: they show what the module reports, say how old it is, and tell
/// in a line of their own what became of the last command of the user.
class DriveForm : public PanelForm {
protected:
    using PanelForm::PanelForm;

    /// Adds something to read in every tick, after what was added before.
    void AddRead(PanelRead read) { reads_.push_back(std::move(read)); }
    /// Adds `PollState` and `CommandState`, finishes the panel, reads the revision and begins to poll.
    void FinishDrive();

    /// Adds that opening the panel drives nothing, and, where the user is asked before outputs are driven,
    /// `PutBackBtn`. `digits`: of the word that sets all outputs ("@AADO0F05").
    void AddPutBack(std::int16_t digits);
    /// What the outputs were read as: what stood before, unless the user has already driven something.
    /// Nothing is sent for it.
    void KeepBefore(unsigned outputs);
    /// There is nothing that could be kept now, and why.
    void KeepNothing(const char* why);

    /// Sends a command of the user. A failure is told in `CommandState`; what is shown changes only by what
    /// the module reports. `what` says what it does: "Output 3 on".
    void Drive(const QString& what, const std::function<Answer()>& command);

    void Tick() override;
    std::string Revision() override;
    void ShowStale(bool stale) override;

    /// A label for a value that the module reports; "-" until it does.
    static QLabel* ValueLabel(const QString& name);
    /// Makes it a large one, in digits of one width, with room for `widest`.
    static void ShowLarge(QLabel& label, const QString& widest);
    /// Shows a value that was read, or marks the one that is shown as stale.
    static void ShowValue(QLabel& label, const QString& text, bool stale);

private:
    void ReadFrom(std::size_t place);
    void ShowFrom(std::size_t place, bool stale) const;
    void ShowPoll();
    /// Shows a text below the values and makes room for it.
    void ShowState(QLabel& label, const QString& text);

    void PutBack();

    std::vector<PanelRead> reads_;
    OpeningState* opening_ = nullptr; // only of a panel with outputs
    std::optional<unsigned> before_;  // what the outputs stood at
    bool driven_ = false;             // the user has driven something
    std::int16_t digits_ = 0;         // of the word of all outputs
    QString failed_;                  // what was read first without success in this tick
    Answer failure_ = Answer::Ok;     // and why
    QLabel* pollState_ = nullptr;
    QLabel* commandState_ = nullptr;
};

} // namespace kavro
