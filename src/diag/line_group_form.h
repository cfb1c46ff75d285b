#pragma once

#include "map/module_tags.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QString>

#include <functional>
#include <vector>

class QGridLayout;

namespace kavro {

class TagLabel;

/// A digital line: a lamp with its state, which is also the button that switches it while that is possible.
/// It shows what it is told and never changes by itself.
class LineButton : public QAbstractButton {
public:
    /// Of unknown state at first. `caption` names the line to a screen reader.
    LineButton(const QString& name, const QString& caption);

    /// Shows a state that the module reports.
    void Show(bool on);
    /// Marks the state as no longer up to date.
    void SetStale();
    /// Enables it, or disables it and says why in its tooltip.
    void SetSwitchable(bool switchable, const QString& whyNot);
    /// Speaks of the line with its tag, which its tooltip has too.
    void ShowTag(const TagAndNote& tag);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {} // the module decides

private:
    void Describe();
    void ShowTip();

    QString caption_;
    QString whyNot_; // it cannot be switched
    TagAndNote tag_;
    bool known_ = false; // the module has told it once
    bool stale_ = false;
};

/// What a group of digital lines is called.
struct LineGroupNames {
    QString Title;   ///< "Outputs"
    QString Control; ///< name of the controls, "Output" for "Output_0" and so on
    QString Caption; ///< of a line, "Output" for "Output 0"
};

/// A frame with digital lines, numbered from 0.
class LineGroup : public QGroupBox {
public:
    LineGroup(LineGroupNames names, int lines);

    /// Lets the lines be switched: calls `change` with the line and the state that it is to get.
    void OnChange(const std::function<void(int line, bool on)>& change);
    /// Adds the buttons "AllOn" and "AllOff", the group's control name before it, and what they do.
    void AddAllButtons(const std::function<void(bool on)>& change);
    /// Enables the lines and the buttons, or disables them and says why.
    void SetSwitchable(bool switchable, const QString& whyNot);

    /// Shows the tags of the lines below them.
    void ShowTags(const std::vector<TagAndNote>& tags);

    /// Shows states that the module reports: bit n for line n.
    void Show(unsigned states);
    void SetStale();

private:
    LineGroupNames names_;
    std::vector<LineButton*> lines_;
    std::vector<TagLabel*> tags_;       // as many, once there are tags
    std::vector<QAbstractButton*> all_; // "All on", "All off"
    QGridLayout* grid_ = nullptr;
};

} // namespace kavro
