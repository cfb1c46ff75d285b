#pragma once

#include <QGroupBox>

#include <vector>

class QRadioButton;

namespace kavro {

/// A frame of rows, each with two options of which at most one is chosen.
class OptionPairs : public QGroupBox {
public:
    /// One of the two columns.
    struct Column {
        const char* Name;    ///< of its controls, followed by "_" and the row: "ChannelEnable"
        const char* Caption; ///< over its controls: "Enable"
    };

    /// Nothing is chosen yet. `rows` stand before the options.
    OptionPairs(const QString& title, const Column& first, const Column& second, const QStringList& rows);

    /// Chooses the first or the second option of a row.
    void Choose(int row, bool first);

    /// Whether the first option of a row is chosen.
    bool IsFirst(int row) const;

    /// Disables a row and says why.
    void Disable(int row, const QString& whyNot);

private:
    struct Pair {
        QWidget* Label;
        QRadioButton* First;
        QRadioButton* Second;
    };

    const Pair& At(int row) const { return pairs_[static_cast<std::size_t>(row)]; }

    std::vector<Pair> pairs_;
};

} // namespace kavro
