#pragma once

#include "map/session.h"

#include <QListWidget>

#include <functional>

class QMenu;

namespace kavro {

/// The list of known modules in the main window: `Session::Device`, with marks. Enter and a double click open
/// the line that is selected; a context menu, also by the keyboard's menu key, offers the actions that the
/// list was given.
class DeviceList : public QListWidget {
public:
    DeviceList(const Session& session, std::function<void()> open);

    /// Shows the whole list of the session anew; nothing is selected then.
    void ShowAll();

    /// Shows all entries as they are now; selection and place stay.
    void RefreshAll();

    /// Shows an entry that was put in there.
    void InsertEntry(int index);

    /// Shows an entry as it is now; selection and place stay.
    void ShowEntry(int index);

    /// Shows the tags of the line file that is open beside the lines, for which the list is wider then.
    void ShowTags();

    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    int Height(int lines) const;
    int Width(int columns) const;
    void ShowTag(int index);

    const Session& session_;
    std::function<void()> open_;
    QMenu* menu_ = nullptr;
};

} // namespace kavro
