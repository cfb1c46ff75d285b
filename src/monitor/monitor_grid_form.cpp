#include "monitor/monitor_grid_form.h"

#include "map/tag_label_form.h"
#include "monitor/monitor_cell_form.h"
#include "monitor/shown_unit.h"
#include "monitor/trend_style_form.h"
#include "ui/named.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

namespace kavro {

namespace {

constexpr int ShownRows = 28; // of the window as it opens
constexpr int LeastRows = 4;
constexpr int ShownColumns = 4; // likewise, of values
constexpr int RowRoom = 9;      // pixels above and below the text
constexpr int CellRoom = 14;
constexpr int TickBoxRoom = 24;
constexpr int TagCharacters = 8; // of a tag beside a value, where any has one
constexpr const char* WidestValue = "\u25b2 1234.5678 mV";
constexpr const char* WidestState = "no values";
constexpr const char* WidestAge = "120 min";

constexpr int FirstValue = MonitorTable::FirstValueColumn;

} // namespace

MonitorGrid::MonitorGrid(Session& session, const Monitor& monitor, const std::vector<ValueKey>& ticked,
                         GridEvents events)
    : session_(session), events_(std::move(events)), ticks_(ticked),
      table_(session, monitor, ticks_, [this] { events_.Ticked(); }) {
    Named(this, "MonitorGrid", "Modules and their values");
    setModel(&table_);
    setItemDelegate(new MonitorCell(this, [this](const QModelIndex& cell) { Enlarge(cell); }));
    setSelectionMode(SingleSelection);
    setWordWrap(false);
    auto* tickBoxes = new TickBoxStyle;
    tickBoxes->setParent(this);
    setStyle(tickBoxes);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + RowRoom);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    setTabKeyNavigation(false); // Tab goes on to the next control
    setHorizontalScrollMode(ScrollPerPixel);
}

void MonitorGrid::SetModules(const std::vector<int>& indexes) {
    const auto current = CurrentValue();
    table_.SetModules(indexes);
    LayOut();
    updateGeometry(); // the grid asks for another width
    if (current)
        SetCurrentValue(*current);
    if (!currentIndex().isValid() && table_.rowCount() > 0)
        setCurrentIndex(table_.index(0, FirstValue));
}

int MonitorGrid::WidthFor(const QString& text, int room) const {
    QFont bold = font();
    bold.setBold(true);
    return QFontMetrics(bold).horizontalAdvance(text) + room;
}

// Of a column of values, below which its texts are cut.
int MonitorGrid::LeastWidth() const {
    const bool tagged = std::ranges::any_of(table_.Rows().Modules(), [this](const GridRows::Module& module) {
        const ModuleTags* const tags = TagsOf(session_, module.Index);
        return tags && !tags->Channels.empty();
    });
    const int tag = QFontMetrics(SmallTagFont(font())).averageCharWidth() * TagCharacters + 2 * CellRoom;
    return WidthFor(WidestValue, CellRoom + TickBoxRoom) + (tagged ? tag : 0);
}

void MonitorGrid::LayOut() {
    if (layingOut_)
        return;
    layingOut_ = true;
    ShareWidth();
    updateGeometries(); // the scroll bar may have come or gone
    ShareWidth();
    layingOut_ = false;
}

// As many columns as there is room for share it.
void MonitorGrid::ShareWidth() {
    const int least = LeastWidth();
    const int state = WidthFor(WidestState, CellRoom);
    const int age = WidthFor(WidestAge, CellRoom);
    const int room = viewport()->width() - state - age;
    const int columns = std::clamp(room / least, 1, std::max(table_.Rows().MostValues(), 1));
    SetColumnsInPlace(columns);
    setColumnWidth(MonitorTable::StateColumn, state);
    setColumnWidth(MonitorTable::AgeColumn, age);
    int left = std::max(room, least);
    for (int column = 0; column < columns; ++column) {
        const int width = left / (columns - column);
        setColumnWidth(FirstValue + column, width);
        left -= width;
    }
}

// What the user looks at stays where it is.
void MonitorGrid::SetColumnsInPlace(int columns) {
    const GridRows& rows = table_.Rows();
    if (columns == rows.Columns())
        return;
    const QModelIndex current = currentIndex();
    const auto value = table_.ValueAt(current);
    const int index = current.isValid() ? rows.At(current.row()).Index : -1;
    const int top = rowAt(0);
    const int topIndex = top > 0 ? rows.At(top).Index : -1;
    table_.SetColumns(columns);
    updateGeometries(); // else it could not be scrolled yet
    if (const auto row = rows.FirstRowOf(index))
        selectionModel()->setCurrentIndex(value ? table_.CellOf(*value)
                                                : table_.index(*row, std::max(current.column(), 0)),
                                          QItemSelectionModel::ClearAndSelect);
    if (const auto row = rows.FirstRowOf(topIndex))
        verticalScrollBar()->setValue(*row);
}

void MonitorGrid::ShowTags() {
    table_.AllChanged();
    LayOut();
    updateGeometry();
}

std::vector<TrendLine> MonitorGrid::TickedLines() const {
    std::vector<TrendLine> lines;
    for (const TrendTick& tick : ticks_.All()) {
        const auto at = tick.Shown ? table_.Find(tick.Key) : std::nullopt;
        if (!at)
            continue;
        const ChannelValue value = table_.Shown(*at).Value;
        TrendLine line;
        line.Name = QString::fromStdString(NameOfValue(session_, at->Index, value));
        line.Unit = QString::fromStdString(ShownUnit(value.Unit));
        line.Word = value.Unit == WordUnit;
        line.Style = tick.Style;
        line.Key = tick.Key;
        line.Index = at->Index;
        line.Place = static_cast<std::size_t>(at->Place);
        line.Thresholds = ThresholdsOf(session_, at->Index, value);
        lines.push_back(std::move(line));
    }
    return lines;
}

std::optional<int> MonitorGrid::CurrentModule() const {
    const GridRows& rows = table_.Rows();
    if (rows.Count() == 0)
        return std::nullopt;
    return rows.At(std::max(currentIndex().row(), 0)).Index;
}

std::optional<ValuePlace> MonitorGrid::CurrentValue() const {
    if (const auto value = table_.ValueAt(currentIndex()))
        return value;
    const auto index = CurrentModule();
    return index ? table_.Rows().ValueAt(*table_.Rows().FirstRowOf(*index), 0) : std::nullopt;
}

void MonitorGrid::SetCurrentValue(const ValuePlace& value) {
    if (const QModelIndex cell = table_.CellOf(value); cell.isValid())
        setCurrentIndex(cell);
}

void MonitorGrid::Enlarge(const QModelIndex& cell) {
    if (const auto value = table_.ValueAt(cell))
        events_.Enlarge(*value);
}

// Of the grid with so many columns of values, as narrow as they can be.
int MonitorGrid::WidthOf(int valueColumns) const {
    return verticalHeader()->sizeHint().width() + WidthFor(WidestState, CellRoom) +
           WidthFor(WidestAge, CellRoom) + valueColumns * LeastWidth() +
           verticalScrollBar()->sizeHint().width() + 2 * frameWidth();
}

QSize MonitorGrid::sizeHint() const {
    const int columns = std::clamp(table_.Rows().MostValues(), 1, ShownColumns);
    return {WidthOf(columns), ShownRows * verticalHeader()->defaultSectionSize()};
}

QSize MonitorGrid::minimumSizeHint() const {
    return {WidthOf(1), LeastRows * verticalHeader()->defaultSectionSize()};
}

void MonitorGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    LayOut();
}

void MonitorGrid::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        LayOut();
}

void MonitorGrid::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !event->isAutoRepeat() && table_.ValueAt(currentIndex()))
        Enlarge(currentIndex());
    else
        QTableView::keyPressEvent(event);
}

} // namespace kavro
