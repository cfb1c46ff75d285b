#pragma once

#include <QListWidget>

#include <functional>

class QMenu;

namespace kavro {

/// The list of known modules in the main window. Enter and a double click open the line that is selected; a
/// context menu, also by the keyboard's menu key, offers the actions that the list was given.
class DeviceList : public QListWidget {
public:
    explicit DeviceList(std::function<void()> open);

    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    int Height(int lines) const;

    std::function<void()> open_;
    QMenu* menu_ = nullptr;
};

} // namespace kavro
