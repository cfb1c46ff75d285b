#pragma once

#include "map/module_tags.h"

#include <QGroupBox>

#include <functional>
#include <string>

class QHBoxLayout;

namespace kavro {

class OutputBar;
class TagLabel;
class TintedLabel;

/// How an output is shown and driven.
struct OutputDescription {
    QString Title;
    QString NameEnd;      ///< behind the names of its controls: "_0"
    QStringList UnitName; ///< of its unit labels: behind the value and, if there are two, at the bar's end
    std::string Low, High, Unit;
    int Minimum = 0;                                ///< of the bar, whose maximum is `OutputBarSteps`
    std::string Designed;                           ///< value shown before anything is known
    std::function<std::string(int position)> Shown; ///< the value of a position
    std::function<void(int position)> Change;       ///< the bar has moved: send, then `Confirm`
};

/// An output with its value and its bar: `DA_data`, `DaScroll`, `LowRange`, `HighRange`.
class OutputControl : public QGroupBox {
public:
    explicit OutputControl(OutputDescription description);

    /// Shows the tag of the output's channel beside its value.
    void ShowTag(const TagAndNote& tag);
    /// Shows the value of a bar position.
    void ShowValue(int position);
    /// Sends a movement that has not been sent yet.
    void SendDue();
    /// The output has been set to where the bar stands.
    void Confirm();
    /// Marks the value as stale and the bar as not usable, and goes back to what the output was last set to.
    void ShowStale(bool stale);

private:
    OutputDescription description_;
    OutputBar* bar_ = nullptr;
    QHBoxLayout* value_ = nullptr;
    TagLabel* tag_ = nullptr; // once there is one
    TintedLabel* data_ = nullptr;
    TintedLabel* unit_ = nullptr;
};

} // namespace kavro
