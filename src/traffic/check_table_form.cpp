#include "traffic/check_table_form.h"

#include "map/module_access.h"
#include "traffic/line_check_report.h"
#include "ui/named.h"
#include "ui/read_only_table.h"
#include "ui/readable_color.h"

#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace kavro {

namespace {

enum Column {
    AddressColumn,
    ModelColumn,
    OutcomeColumn,
    FirstCountColumn,
    FirstTimeColumn = FirstCountColumn + 6,
    ColumnCount = FirstTimeColumn + 4,
};
constexpr const char* Headings[] = {"Address",   "Model",   "Outcome", "Sent",  "Complete",
                                    "Silent",    "Damaged", "Refused", "Stray", "Least ms",
                                    "Median ms", "95 % ms", "Most ms"};
constexpr int CountsRole = Qt::UserRole;
constexpr int BarCharacters = 14; // width of a bar
constexpr int WordCharacters = 26;
constexpr int Room = 4; // pixels around it
constexpr int UsualRows = 10;
constexpr int FewestRows = 4;                                      // in sight, with a scroll bar below
constexpr QRgb Tints[] = {0x13783A, 0x7A7A7A, 0xB3261E, 0x7B3FA0}; // complete, silent, damaged, refused

int CharacterWidth(const QFontMetrics& font) {
    return font.averageCharWidth();
}

// "good", or what was not.
QString Words(const ModuleCheck& module) {
    QStringList words;
    for (const auto& [count, word] :
         {std::pair{module.Silent, "silent"}, {module.Damaged, "damaged"}, {module.Refused, "refused"}})
        if (count > 0)
            words << QString("%1 %2").arg(count).arg(word);
    return !words.isEmpty() ? words.join(", ") : module.Sent > 0 ? "all complete" : "not asked yet";
}

void DrawBar(QPainter& painter, const QRect& place, const QVariantList& counts, const QColor& background) {
    int sum = 0;
    for (const QVariant& count : counts)
        sum += count.toInt();
    int begin = 0;
    for (qsizetype part = 0; part < counts.size() && sum > 0; ++part) {
        const int end = begin + counts[part].toInt();
        const int left = place.left() + place.width() * begin / sum;
        const int right = place.left() + place.width() * end / sum;
        if (end > begin) // a single one of many is seen all the same
            painter.fillRect(QRect(left, place.top(), std::max(right - left, 2), place.height()),
                             Readable(QColor(Tints[part]), background));
        begin = end;
    }
}

} // namespace

void OutcomeBar::paint(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QString words = std::exchange(cell.text, QString());
    const QWidget* const view = option.widget;
    view->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, view);
    const int width = CharacterWidth(cell.fontMetrics) * BarCharacters;
    const QRect bar(cell.rect.left() + Room, cell.rect.top() + Room, width, cell.rect.height() - 2 * Room);
    DrawBar(*painter, bar, index.data(CountsRole).toList(), cell.palette.color(QPalette::Base));
    const bool selected = cell.state.testFlag(QStyle::State_Selected);
    painter->setPen(cell.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    const QRect text = cell.rect.adjusted(width + 3 * Room, 0, -Room, 0);
    painter->drawText(text, Qt::AlignVCenter | Qt::AlignLeft,
                      cell.fontMetrics.elidedText(words, Qt::ElideRight, text.width()));
}

QSize OutcomeBar::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return {CharacterWidth(option.fontMetrics) * (BarCharacters + WordCharacters),
            QStyledItemDelegate::sizeHint(option, index).height()};
}

CheckTable::CheckTable(std::string decimalSeparator) : decimalSeparator_(std::move(decimalSeparator)) {
    Named(this, "CheckTable", "Modules and how they answered");
    QStringList headings;
    for (const char* heading : Headings)
        headings << heading;
    ShowReadOnly(*this, headings);
    setMinimumHeight(horizontalHeader()->sizeHint().height() +
                     FewestRows * verticalHeader()->defaultSectionSize());
    setItemDelegateForColumn(OutcomeColumn, new OutcomeBar(this));
}

void CheckTable::ShowAll(const std::vector<ModuleCheck>& modules) {
    setRowCount(static_cast<int>(modules.size()));
    for (int row = 0; row < rowCount(); ++row) {
        for (int column = 0; column < ColumnCount; ++column) {
            auto* cell = new QTableWidgetItem;
            cell->setTextAlignment(column > OutcomeColumn ? Qt::AlignRight | Qt::AlignVCenter
                                                          : Qt::AlignLeft | Qt::AlignVCenter);
            setItem(row, column, cell);
        }
        const ModuleCheck& module = modules[static_cast<std::size_t>(row)];
        item(row, AddressColumn)->setText(QString::fromStdString(ShownAddress(module.Address)));
        item(row, ModelColumn)->setText(QString::fromStdString(module.Model));
        ShowModule(row, module);
    }
    if (rowCount() > 0)
        setCurrentCell(0, AddressColumn);
    resizeColumnsToContents();
}

void CheckTable::ShowModule(int row, const ModuleCheck& module) {
    item(row, OutcomeColumn)->setText(Words(module));
    item(row, OutcomeColumn)
        ->setData(CountsRole, QVariantList{module.Complete, module.Silent, module.Damaged, module.Refused});
    int column = FirstCountColumn;
    for (const std::int64_t count :
         {std::int64_t{module.Sent}, std::int64_t{module.Complete}, std::int64_t{module.Silent},
          std::int64_t{module.Damaged}, std::int64_t{module.Refused}, module.Stray})
        item(row, column++)->setText(QString::number(count));
    const auto times = TimesOf(module);
    for (double ReplyMs::*time : {&ReplyMs::Min, &ReplyMs::Median, &ReplyMs::P95, &ReplyMs::Max})
        item(row, column++)
            ->setText(times ? QString::fromStdString(ShownNumber(MsText((*times).*time), decimalSeparator_))
                            : QString("-"));
}

QSize CheckTable::sizeHint() const {
    const int rows = std::clamp(rowCount(), 3, UsualRows);
    return {horizontalHeader()->length() + verticalScrollBar()->sizeHint().width() + 2 * frameWidth(),
            horizontalHeader()->sizeHint().height() + rows * verticalHeader()->defaultSectionSize() +
                2 * frameWidth()};
}

} // namespace kavro
