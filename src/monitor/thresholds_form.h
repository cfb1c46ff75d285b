#pragma once

#include "link/messages.h"
#include "monitor/thresholds.h"
#include "ui/note.h"

#include <QDialog>

#include <functional>
#include <optional>

class QFormLayout;
class QLineEdit;

namespace kavro {

class TintedLabel;

/// Sets the thresholds of one value, with what it is at present. OK keeps them; an entry that is not possible
/// is refused below its control.
class ThresholdsForm : public QDialog {
public:
    /// For a value of entry `index`; `present` gives it as it was last read, and is asked from time to time.
    ThresholdsForm(Session& session, Messages& messages, int index, std::function<ChannelValue()> present,
                   QWidget* parent);

private:
    struct Entry {
        QLineEdit* Line = nullptr;
        Note* Told = nullptr;
    };

    Entry AddEntry(QFormLayout& rows, const char* name, const std::optional<double>& limit);
    std::optional<double> NumberIn(const Entry& entry) const;
    std::optional<Thresholds> Entered() const;
    void Refuse(const Entry& entry, const QString& why) const;
    void ShowReading();
    void OKBtn_Click();

    Session& session_;
    Messages& messages_;
    std::function<ChannelValue()> present_;
    ValueKey key_;
    QString unit_;
    TintedLabel* reading_ = nullptr;
    Entry high_, low_;
};

/// Lets the user set the thresholds of a value of entry `index` over `parent`; the turns go on meanwhile. For
/// a digital word tells that there are none. Whether they were changed.
bool EditThresholds(Session& session, Messages& messages, int index, std::function<ChannelValue()> present,
                    QWidget* parent);

} // namespace kavro
