#pragma once

#include <QLayout>

#include <memory>
#include <vector>

namespace kavro {

/// A row of controls that goes on in a further line where the window is too narrow for it.
class FlowRow : public QLayout {
public:
    FlowRow();
    ~FlowRow() override;

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize minimumSize() const override;
    QSize sizeHint() const override;
    void setGeometry(const QRect& room) override;

private:
    int Lay(const QRect& room, bool move) const;

    std::vector<std::unique_ptr<QLayoutItem>> items_;
};

} // namespace kavro
