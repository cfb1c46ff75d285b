#pragma once

#include "ui/tinted_label.h"

namespace kavro {

/// A text as large as its place allows, to be read from two metres: 48 points and more, less only where not
/// even that fits.
class BigLabel : public TintedLabel {
public:
    BigLabel();

    /// Shows a text in the size that fits.
    void Show(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return false; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void Fit();
    bool Fits(int points) const;
};

} // namespace kavro
