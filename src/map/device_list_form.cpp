#include "map/device_list_form.h"

#include "map/list_line.h"
#include "map/tag_delegate_form.h"
#include "map/tag_label_form.h"
#include "ui/fixed_font.h"
#include "ui/named.h"

#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>

namespace kavro {

namespace {

constexpr int Columns = 75;       // characters of a list line and of the dash lines of a map file
constexpr int TaggedColumns = 90; // with tags behind the lines
constexpr int UsualLines = 18;
constexpr int FewestLines = 4;

} // namespace

DeviceList::DeviceList(const Session& session, std::function<void()> open)
    : session_(session), open_(std::move(open)) {
    Named(this, "Device", "Modules");
    setFont(FixedFont());
    setMinimumSize(Width(Columns), Height(FewestLines));
    setItemDelegate(new TagDelegate(this));
    menu_ = Named(new QMenu(this), "DeviceMenu", "Operations of the module");
}

void DeviceList::ShowAll() {
    clear();
    for (std::size_t index = 0; index < session_.Device.size(); ++index)
        InsertEntry(static_cast<int>(index));
}

void DeviceList::RefreshAll() {
    for (int index = 0; index < count(); ++index)
        ShowEntry(index);
}

void DeviceList::InsertEntry(int index) {
    insertItem(index, QString::fromStdString(ShownLine(session_, index)));
    ShowTag(index);
}

void DeviceList::ShowEntry(int index) {
    if (QListWidgetItem* line = item(index))
        line->setText(QString::fromStdString(ShownLine(session_, index)));
    ShowTag(index);
}

void DeviceList::ShowTags() {
    setMinimumWidth(Width(session_.Tags.Path.empty() ? Columns : TaggedColumns));
    for (int index = 0; index < count(); ++index)
        ShowTag(index);
}

// The text of the item stays the line, as it is printed and copied.
void DeviceList::ShowTag(int index) {
    QListWidgetItem* line = item(index);
    if (!line)
        return;
    const ModuleTags* const tags = TagsOf(session_, index);
    const TagAndNote tag = tags ? tags->Module : TagAndNote{};
    const QString shown = ShownTag(tag);
    if (shown.isEmpty() && line->data(TagRole).toString().isEmpty())
        return; // nor was there any before
    line->setData(TagRole, shown);
    line->setData(Qt::AccessibleTextRole, shown.isEmpty() ? QVariant() : line->text() + ", " + shown);
    line->setToolTip(TagTip(tag));
}

int DeviceList::Height(int lines) const {
    return QFontMetrics(font()).lineSpacing() * lines;
}

int DeviceList::Width(int columns) const {
    return QFontMetrics(font()).horizontalAdvance(' ') * columns;
}

QSize DeviceList::sizeHint() const {
    return {minimumWidth(), Height(UsualLines)};
}

void DeviceList::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
    const bool chosen = !selectedItems().isEmpty();
    if (enter && event->isAutoRepeat())
        return; // a key held down would answer what it has opened
    if (count() > 0 && !chosen && (enter || key == Qt::Key_Up || key == Qt::Key_Down))
        // The first key selects the line that the focus is on; the list itself would go on to the next.
        setCurrentRow(std::max(currentRow(), 0));
    else if (enter && chosen)
        open_();
    else
        QListWidget::keyPressEvent(event);
}

void DeviceList::mouseDoubleClickEvent(QMouseEvent* event) {
    QListWidget::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && itemAt(event->position().toPoint()))
        open_();
}

void DeviceList::contextMenuEvent(QContextMenuEvent* event) {
    menu_->addActions(actions()); // those that it has already stay as they are
    menu_->popup(event->globalPos());
}

} // namespace kavro
