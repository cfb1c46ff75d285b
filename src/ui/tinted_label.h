#pragma once

#include <QColor>
#include <QLabel>

namespace kavro {

/// A label with plain text in a colour of its own, which stays readable where the desktop changes to a dark
/// theme.
class TintedLabel : public QLabel {
public:
    explicit TintedLabel(const QString& text = {});

    /// Asks for a colour; an invalid one stands for that of any text.
    void SetTint(const QColor& tint);

protected:
    void changeEvent(QEvent* event) override;

private:
    void Apply();

    QColor tint_;
};

} // namespace kavro
