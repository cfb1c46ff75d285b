#pragma once

#include <QLabel>

namespace kavro {

/// Lets a screen reader speak a widget that shows something new, unless its window is not shown.
void Speak(QWidget& widget);

/// A passive line in a form that says what an entry will lead to, led by the warning sign; hidden while there
/// is nothing to say. A screen reader speaks what it begins to say.
class Note : public QLabel {
public:
    Note(const QString& name, QWidget& form);

    /// Says a text, or nothing when it is empty. The form grows where it needs to.
    void Tell(const QString& text);

private:
    void ComeIntoView();
};

} // namespace kavro
