#pragma once

#include "diag/analog_output_panel.h"
#include "diag/output_read_back.h"
#include "map/module_tags.h"

#include <QGroupBox>

#include <functional>
#include <optional>
#include <string>

class QHBoxLayout;
class QLabel;

namespace kavro {

class OutputBar;
class OutputEntry;
class TagLabel;
class TintedLabel;

/// How an output is shown and driven.
struct OutputDescription {
    QString Title;
    QString NameEnd;      ///< behind the names of its controls: "_0"
    QStringList UnitName; ///< of its unit labels: behind the value and, if there are two, at the bar's end
    std::string Low, High, Unit;
    int Minimum = 0;                                   ///< of the bar, whose maximum is `OutputBarSteps`
    std::string Designed;                              ///< value shown before anything is known
    OutputBounds Bounds;                               ///< of the values that can be entered
    std::string Separator;                             ///< the user's decimal separator
    std::function<std::string(BarPosition bar)> Shown; ///< the value of a position
    std::function<void(BarPosition bar)> Change;       ///< the user has moved it: send, then `Confirm`
};

/// An output with its value, its bar and its entry: `DA_data`, `DaScroll`, `LowRange`, `HighRange`;
/// `ReadBack` once there is something to say of what the module made of a value. An entered value moves the
/// bar, and a change of either that has not been sent yet gives way to the next one of either.
class OutputControl : public QGroupBox {
public:
    explicit OutputControl(OutputDescription description);

    /// Shows the tag of the output's channel beside its value.
    void ShowTag(const TagAndNote& tag);
    /// Shows the value of a bar position.
    void ShowValue(int position);
    /// Goes to a value that the output gets in another way, in place of what has not been sent yet.
    void Stand(double value);
    /// Says what became of a value that was sent.
    void ShowReadBack(const ReadBackWords& words);
    /// Sends a movement that has not been sent yet.
    void SendDue();
    /// The output has been set to where the bar stands.
    void Confirm();
    /// Marks the value as stale and the bar as not usable, and goes back to what the output was last set to.
    void ShowStale(bool stale);

private:
    QLayout* BuildValue();
    QLayout* BuildRange();
    void Enter(double value);
    void Change(int position);
    BarPosition At(int position) const;
    int Nearest(BarPosition bar) const;
    void ShowText(const std::string& text);

    OutputDescription description_;
    std::optional<BarPosition> entered_; // not sent yet; more exact than the bar
    OutputBar* bar_ = nullptr;
    OutputEntry* entry_ = nullptr;
    QLabel* readBack_ = nullptr; // shown once there is something to say
    QHBoxLayout* value_ = nullptr;
    TagLabel* tag_ = nullptr; // once there is one
    TintedLabel* data_ = nullptr;
    TintedLabel* unit_ = nullptr;
};

} // namespace kavro
