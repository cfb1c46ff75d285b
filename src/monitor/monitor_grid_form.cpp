#include "monitor/monitor_grid_form.h"

#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/tag_label_form.h"
#include "monitor/trend_style_form.h"
#include "ui/named.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace kavro {

namespace {

enum Column { StateColumn, AgeColumn, FirstValueColumn, ColumnCount = FirstValueColumn + MostValues };

constexpr int ShownRows = 28; // of the window as it opens
constexpr int RowRoom = 9;    // pixels above and below the text
constexpr int CellRoom = 14;
constexpr int TickBoxRoom = 20;
constexpr int TagColumns = 20; // of a heading

// "5 (05H) 8250"
QString ModuleText(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    return QString::fromStdString(ShownAddress(record.Address) + " " + Trim(ShownModel(record.Model)));
}

bool IsNumber(const std::string& channel) {
    return channel.size() == 1 && channel[0] >= '0' && channel[0] <= '9';
}

// "1.2500 V"; the value of a channel that has no number is led by its name.
QString ValueText(const MonitoredValue& value, const std::string& separator) {
    const std::string name = IsNumber(value.Value.Channel) ? "" : value.Value.Channel + ": ";
    const std::string text = value.Value.State == ValueState::Disabled || !value.GoodAt
                                 ? StateText(value.Value.State)
                                 : ShownNumber(value.Value.Text, separator) + " " + value.Value.Unit;
    return QString::fromStdString(name + Trim(text));
}

QString AgeText(std::optional<std::int64_t> ageMs, const std::string& separator) {
    constexpr std::int64_t tenths = 10'000, seconds = 120'000; // up to here
    if (!ageMs)
        return {};
    if (*ageMs < tenths)
        return QString::fromStdString(
            ShownNumber(FormatNumber(static_cast<double>(*ageMs) / 1000, 1, 1), separator) + " s");
    return *ageMs < seconds ? QString("%1 s").arg(*ageMs / 1000) : QString("%1 min").arg(*ageMs / 60'000);
}

} // namespace

MonitorGrid::MonitorGrid(const Session& session, const Monitor& monitor, std::function<void()> ticked)
    : session_(session), monitor_(monitor), ticked_(std::move(ticked)) {
    Named(this, "MonitorGrid", "Modules and their values");
    Build();
    connect(this, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) { TakeTick(item); });
}

void MonitorGrid::Build() {
    QStringList headings = {"State", "Age"};
    for (std::size_t place = 0; place < MostValues; ++place)
        headings << QString("Value %1").arg(place);
    setColumnCount(ColumnCount);
    setRowCount(session_.ModuleCount);
    setHorizontalHeaderLabels(headings);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setWordWrap(false);
    auto* tickBoxes = new TickBoxStyle;
    tickBoxes->setParent(this);
    setStyle(tickBoxes);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + RowRoom);
    setTabKeyNavigation(false); // Tab goes on to the next control
    setAlternatingRowColors(true);
    setHorizontalScrollMode(ScrollPerPixel);
    QFont bold = font();
    bold.setBold(true);
    const auto fit = [&](int column, const char* widest, int room) {
        setColumnWidth(column, QFontMetrics(bold).horizontalAdvance(widest) + room);
    };
    fit(StateColumn, "no values", CellRoom);
    fit(AgeColumn, "120 min", CellRoom);
    for (int column = FirstValueColumn; column < ColumnCount; ++column)
        fit(column, "134.7100 ohms", CellRoom + TickBoxRoom);
    const QSignalBlocker silent(this);
    for (int index = 0; index < rowCount(); ++index)
        FillRow(index);
}

// Wide enough for four values and what stands before them.
QSize MonitorGrid::sizeHint() const {
    const int width = horizontalHeader()->sectionPosition(FirstValueColumn + 4);
    return {verticalHeader()->sizeHint().width() + width + verticalScrollBar()->sizeHint().width() +
                2 * frameWidth(),
            ShownRows * verticalHeader()->defaultSectionSize()};
}

void MonitorGrid::FillRow(int index) {
    for (int column = 0; column < ColumnCount; ++column) {
        auto* item = new QTableWidgetItem;
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        setItem(index, column, item);
    }
    // As the heading of the row it is in sight also when the values are scrolled.
    auto* heading = new QTableWidgetItem;
    heading->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setVerticalHeaderItem(index, heading);
    ShowHeading(index);
    SetText(index, StateColumn, QString::fromStdString(monitor_.State(index)));
}

// "5 (05H) 8250  Tank room"
void MonitorGrid::ShowHeading(int index) {
    const ModuleTags* const tags = TagsOf(session_, index);
    const TagAndNote tag = tags ? tags->Module : TagAndNote{};
    const QString shown = fontMetrics().elidedText(ShownTag(tag), Qt::ElideRight,
                                                   fontMetrics().averageCharWidth() * TagColumns);
    QTableWidgetItem* heading = verticalHeaderItem(index);
    heading->setText(ModuleText(session_, index) + (shown.isEmpty() ? shown : "  " + shown));
    heading->setToolTip(TagTip(tag));
}

TagAndNote MonitorGrid::TagAt(int index, int place) const {
    return TagOfValue(session_, index, monitor_.Values(index)[static_cast<std::size_t>(place)].Value);
}

void MonitorGrid::ShowTags() {
    for (int index = 0; index < rowCount(); ++index)
        ShowHeading(index);
    ShowAll();
}

void MonitorGrid::SetText(int row, int column, const QString& text) {
    if (item(row, column)->text() != text)
        item(row, column)->setText(text);
}

void MonitorGrid::ShowModule(int index) {
    const QSignalBlocker silent(this);
    for (int place = 0; place < static_cast<int>(monitor_.Values(index).size()); ++place)
        ShowValue(index, place);
    const QString state = QString::fromStdString(monitor_.State(index));
    SetText(index, StateColumn, state);
    QFont font = this->font();
    font.setBold(state == StateText(ValueState::Error) || state == StateText(ValueState::NoReply));
    item(index, StateColumn)->setFont(font);
    viewport()->update();
}

void MonitorGrid::ShowValue(int index, int place) {
    const MonitoredValue& value = monitor_.Values(index)[static_cast<std::size_t>(place)];
    const bool disabled = value.Value.State == ValueState::Disabled;
    const bool live = value.Value.State == ValueState::Ok;
    QTableWidgetItem* cell = item(index, FirstValueColumn + place);
    if (!disabled && !(cell->flags() & Qt::ItemIsUserCheckable)) {
        cell->setFlags(cell->flags() | Qt::ItemIsUserCheckable);
        cell->setCheckState(Qt::Unchecked);
    }
    SetText(index, FirstValueColumn + place, ValueText(value, session_.DecimalSeparator));
    if (const QString tag = ShownTag(TagAt(index, place)); !session_.Tags.Path.empty())
        cell->setData(Qt::AccessibleTextRole, tag.isEmpty() ? QVariant() : tag + ": " + cell->text());
    // A value that may no longer be so is soft and slanted.
    QFont font = this->font();
    font.setItalic(!live && !disabled);
    cell->setFont(font);
    cell->setForeground(live ? palette().color(QPalette::Text) : SoftText(palette()));
}

void MonitorGrid::ShowAll() {
    for (int index = 0; index < rowCount(); ++index)
        ShowModule(index);
}

void MonitorGrid::ShowAges() {
    const QSignalBlocker silent(this);
    for (int index = 0; index < rowCount(); ++index)
        SetText(index, AgeColumn, AgeText(monitor_.AgeMs(index), session_.DecimalSeparator));
    viewport()->update();
}

void MonitorGrid::TakeTick(QTableWidgetItem* item) {
    const auto found = std::ranges::find_if(ticks_, [item](const Tick& tick) {
        return tick.Row == item->row() && tick.Column == item->column();
    });
    const bool ticked = item->checkState() == Qt::Checked;
    if (ticked == (found != ticks_.end()))
        return;
    const QSignalBlocker silent(this);
    if (ticked) {
        ticks_.push_back({item->row(), item->column(), FreeStyle()});
        item->setData(TrendStyleRole, ticks_.back().Style);
    } else {
        ticks_.erase(found);
    }
    viewport()->update();
    ticked_();
}

// The other lines keep their colours when a tick is taken away.
int MonitorGrid::FreeStyle() const {
    int style = 0;
    while (std::ranges::find(ticks_, style, &Tick::Style) != ticks_.end())
        ++style;
    return style;
}

std::vector<TrendLine> MonitorGrid::TickedLines() const {
    std::vector<TrendLine> lines;
    for (const Tick& tick : ticks_) {
        const auto place = static_cast<std::size_t>(tick.Column - FirstValueColumn);
        const ChannelValue& value = monitor_.Values(tick.Row)[place].Value;
        const std::string channel = IsNumber(value.Channel) ? "ch " + value.Channel : value.Channel;
        TrendLine line;
        line.Name = ModuleText(session_, tick.Row) + " " + QString::fromStdString(channel);
        if (const QString tag = ShownTag(TagOfValue(session_, tick.Row, value)); !tag.isEmpty())
            line.Name += ", " + tag;
        line.Unit = QString::fromStdString(value.Unit);
        line.Word = value.Unit == WordUnit;
        line.Style = tick.Style;
        line.Key = {session_.ModuleTable[tick.Row].Address, value.Channel};
        line.Index = tick.Row;
        line.Place = place;
        lines.push_back(std::move(line));
    }
    return lines;
}

bool MonitorGrid::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const QModelIndex cell = indexAt(static_cast<QHelpEvent*>(event)->pos());
        const auto place = static_cast<std::size_t>(cell.column() - FirstValueColumn);
        if (cell.isValid() && place < monitor_.Values(cell.row()).size()) {
            const QString age = AgeText(monitor_.AgeMs(cell.row(), place), session_.DecimalSeparator);
            const QSignalBlocker silent(this);
            const QString read = age.isEmpty() ? QString("Never read") : "Read " + age + " ago";
            const TagAndNote tag = TagAt(cell.row(), static_cast<int>(place));
            item(cell.row(), cell.column())->setToolTip(tag == TagAndNote{} ? read : TagTip(tag, read));
        }
    }
    return QTableWidget::viewportEvent(event);
}

void MonitorGrid::changeEvent(QEvent* event) {
    QTableWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ShowAll();
}

} // namespace kavro
