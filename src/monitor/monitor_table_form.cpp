#include "monitor/monitor_table_form.h"

#include "map/tag_label_form.h"
#include "monitor/shown_unit.h"
#include "monitor/threshold_color_form.h"
#include "monitor/trend_style_form.h"
#include "monitor/value_text.h"

#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace kavro {

namespace {

constexpr int TagColumns = 20; // of a heading

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

QFont Emphasis(bool bold, bool italic) {
    QFont font;
    font.setBold(bold);
    font.setItalic(italic);
    return font;
}

} // namespace

MonitorTable::MonitorTable(Session& session, const Monitor& monitor, TrendTicks& ticks,
                           std::function<void()> ticked)
    : session_(session), monitor_(monitor), ticks_(ticks), ticked_(std::move(ticked)) {}

void MonitorTable::SetModules(const std::vector<int>& indexes) {
    beginResetModel();
    unread_.resize(static_cast<std::size_t>(session_.ModuleCount));
    std::vector<GridRows::Module> modules;
    for (const int index : indexes) {
        auto& values = unread_[static_cast<std::size_t>(index)];
        std::optional<unsigned> enables;
        // Nothing is sent for the names of the values.
        values = ModuleReader(session_, index, enables).Values;
        modules.push_back({index, static_cast<int>(values.size())});
    }
    rows_ = GridRows(std::move(modules), rows_.Columns());
    ticks_.Show([this](const ValueKey& key) { return Find(key).has_value(); });
    endResetModel();
}

void MonitorTable::SetColumns(int columns) {
    if (columns == rows_.Columns())
        return;
    beginResetModel();
    rows_ = GridRows(rows_.Modules(), columns);
    endResetModel();
}

std::optional<ValuePlace> MonitorTable::ValueAt(const QModelIndex& cell) const {
    return cell.isValid() ? rows_.ValueAt(cell.row(), cell.column() - FirstValueColumn) : std::nullopt;
}

QModelIndex MonitorTable::CellOf(const ValuePlace& value) const {
    const auto row = rows_.FirstRowOf(value.Index);
    return row ? index(*row + value.Place / rows_.Columns(), FirstValueColumn + value.Place % rows_.Columns())
               : QModelIndex();
}

std::optional<ValuePlace> MonitorTable::Find(const ValueKey& key) const {
    for (const GridRows::Module& module : rows_.Modules()) {
        if (session_.ModuleTable[module.Index].Address != key.Address)
            continue;
        const auto& values = unread_[static_cast<std::size_t>(module.Index)];
        const auto found = std::ranges::find(values, key.Channel, &ChannelValue::Channel);
        if (found != values.end())
            return ValuePlace{module.Index, static_cast<int>(found - values.begin())};
    }
    return std::nullopt;
}

ValueKey MonitorTable::KeyOf(const ValuePlace& value) const {
    return kavro::KeyOf(session_, value.Index, Shown(value).Value);
}

MonitoredValue MonitorTable::Shown(const ValuePlace& value) const {
    const auto place = static_cast<std::size_t>(value.Place);
    const auto& read = monitor_.Values(value.Index);
    if (place < read.size())
        return read[place];
    return {unread_.at(static_cast<std::size_t>(value.Index)).at(place), std::nullopt};
}

Side MonitorTable::SideOf(const ValuePlace& value) const {
    const MonitoredValue shown = Shown(value);
    if (!ShowsNumber(shown))
        return Side::Within;
    return kavro::SideOf(ThresholdsOf(session_, value.Index, shown.Value), shown.Value.Number);
}

void MonitorTable::Changed(int row, int column) {
    const QModelIndex cell = index(row, column);
    emit dataChanged(cell, cell); // of one cell each, as a view paints all of itself for several
}

void MonitorTable::ModuleChanged(int index) {
    const auto first = rows_.FirstRowOf(index);
    if (!first)
        return;
    Changed(*first, StateColumn);
    for (int row = *first; row < rows_.Count() && rows_.At(row).Index == index; ++row)
        for (int column = 0; rows_.ValueAt(row, column); ++column)
            Changed(row, FirstValueColumn + column);
}

void MonitorTable::AgesChanged() {
    for (int row = 0; row < rows_.Count(); ++row)
        if (rows_.At(row).First == 0)
            Changed(row, AgeColumn);
}

void MonitorTable::AllChanged() {
    if (rows_.Count() == 0)
        return;
    emit dataChanged(index(0, 0), index(rows_.Count() - 1, columnCount() - 1));
    emit headerDataChanged(Qt::Vertical, 0, rows_.Count() - 1);
}

int MonitorTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_.Count();
}

int MonitorTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : FirstValueColumn + rows_.Columns();
}

QVariant MonitorTable::data(const QModelIndex& cell, int role) const {
    if (!cell.isValid())
        return {};
    if (role == Qt::BackgroundRole) // all rows of a module alike
        return rows_.At(cell.row()).Order % 2 == 1 ? QGuiApplication::palette().alternateBase() : QVariant();
    if (cell.column() < FirstValueColumn)
        return rows_.At(cell.row()).First == 0 ? ModuleData(cell, role) : QVariant();
    const auto value = ValueAt(cell);
    return value ? ValueData(*value, role) : QVariant();
}

QVariant MonitorTable::ModuleData(const QModelIndex& cell, int role) const {
    const int index = rows_.At(cell.row()).Index;
    if (cell.column() == AgeColumn)
        return role == Qt::DisplayRole ? Text(AgeText(monitor_.AgeMs(index), session_.DecimalSeparator))
                                       : QVariant();
    const std::string state = monitor_.State(index);
    if (role == Qt::DisplayRole)
        return Text(state);
    if (role == Qt::FontRole)
        return Emphasis(state == StateText(ValueState::Error) || state == StateText(ValueState::NoReply),
                        false);
    return {};
}

QVariant MonitorTable::ValueData(const ValuePlace& value, int role) const {
    const ValueState state = Shown(value).Value.State;
    const QPalette palette = QGuiApplication::palette();
    switch (role) {
    case Qt::DisplayRole:
        return CellText(value);
    case Qt::AccessibleTextRole:
        return SpokenText(value);
    case Qt::ToolTipRole:
        return Tip(value);
    case Qt::CheckStateRole:
        if (!CanBeTicked(value))
            return {};
        return ticks_.Find(KeyOf(value)) ? Qt::Checked : Qt::Unchecked;
    case TrendStyleRole:
        if (const TrendTick* tick = ticks_.Find(KeyOf(value)))
            return tick->Style;
        return {};
    case TagRole:
        return ShownTag(TagOf(value));
    case Qt::FontRole: // a value that may no longer be so is soft and slanted
        return Emphasis(SideOf(value) != Side::Within,
                        state != ValueState::Ok && state != ValueState::Disabled);
    case Qt::ForegroundRole:
        return state == ValueState::Ok ? ThresholdColor(SideOf(value), palette) : SoftText(palette);
    default:
        return {};
    }
}

// "▲ 5.3160 V"; nothing before the first turn.
QString MonitorTable::CellText(const ValuePlace& value) const {
    if (monitor_.Values(value.Index).empty())
        return {};
    const std::string sign = SideSign(SideOf(value));
    const std::string text = ValueText(Shown(value), session_.DecimalSeparator);
    return Text(sign.empty() ? text : sign + " " + text);
}

QString MonitorTable::SpokenText(const ValuePlace& value) const {
    QString text = ShownTag(TagOf(value));
    if (!text.isEmpty())
        text += ": ";
    text += Text(ValueText(Shown(value), session_.DecimalSeparator));
    const Side side = SideOf(value);
    return side == Side::Within ? text : text + ", " + SideText(side) + " its threshold";
}

QString MonitorTable::Tip(const ValuePlace& value) const {
    if (monitor_.Values(value.Index).empty())
        return {};
    const std::string& separator = session_.DecimalSeparator;
    const auto age = monitor_.AgeMs(value.Index, static_cast<std::size_t>(value.Place));
    QString text = age ? Text("Read " + AgeText(age, separator) + " ago") : QString("Never read");
    if (const Side side = SideOf(value); side != Side::Within)
        text += QString(", %1 its threshold").arg(SideText(side));
    const TagAndNote tag = TagOf(value);
    return tag == TagAndNote{} ? text : TagTip(tag, text);
}

TagAndNote MonitorTable::TagOf(const ValuePlace& value) const {
    return TagOfValue(session_, value.Index, Shown(value).Value);
}

// A channel that is switched off has no trend, but may be ticked from before.
bool MonitorTable::CanBeTicked(const ValuePlace& value) const {
    if (ticks_.Find(KeyOf(value)))
        return true;
    return !monitor_.Values(value.Index).empty() && Shown(value).Value.State != ValueState::Disabled;
}

bool MonitorTable::setData(const QModelIndex& cell, const QVariant& checked, int role) {
    const auto value = ValueAt(cell);
    if (role != Qt::CheckStateRole || !value || !CanBeTicked(*value))
        return false;
    const ValueKey key = KeyOf(*value);
    if ((checked.toInt() == Qt::Checked) != (ticks_.Find(key) != nullptr)) {
        ticks_.Toggle(key);
        Changed(cell.row(), cell.column());
        ticked_();
    }
    return true;
}

Qt::ItemFlags MonitorTable::flags(const QModelIndex& cell) const {
    const auto value = ValueAt(cell);
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return value && CanBeTicked(*value) ? flags | Qt::ItemIsUserCheckable : flags;
}

QVariant MonitorTable::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical)
        return RowHeading(section, role);
    if (role == Qt::DisplayRole)
        return section == StateColumn ? "State"
               : section == AgeColumn ? "Age"
                                      : ColumnHeading(section - FirstValueColumn);
    return {};
}

// "5 (05H) 8250  Tank room"; further rows of the module say which values they have: "5: 2 to 3".
QVariant MonitorTable::RowHeading(int row, int role) const {
    const GridRows::Row& at = rows_.At(row);
    if (role == Qt::TextAlignmentRole)
        return QVariant((at.First == 0 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    if (at.First > 0) {
        const int values = rows_.Modules()[static_cast<std::size_t>(at.Order)].Values;
        const int last = std::min(at.First + rows_.Columns(), values) - 1;
        const QString address = QString("%1: ").arg(session_.ModuleTable[at.Index].Address);
        if (role == Qt::ToolTipRole)
            return Text(ModuleText(session_, at.Index));
        if (role != Qt::DisplayRole)
            return {};
        return address +
               (last == at.First ? QString::number(last) : QString("%1 to %2").arg(at.First).arg(last));
    }
    const ModuleTags* const tags = TagsOf(session_, at.Index);
    const TagAndNote tag = tags ? tags->Module : TagAndNote{};
    if (role == Qt::ToolTipRole)
        return TagTip(tag);
    if (role != Qt::DisplayRole)
        return {};
    const QFontMetrics metrics{QFont()};
    const QString shown =
        metrics.elidedText(ShownTag(tag), Qt::ElideRight, metrics.averageCharWidth() * TagColumns);
    return Text(ModuleText(session_, at.Index)) + (shown.isEmpty() ? shown : "  " + shown);
}

// "Value 1"; "Value 1, 5" where the values need two rows.
QString MonitorTable::ColumnHeading(int column) const {
    const int columns = rows_.Columns();
    if (columns == 1 && rows_.MostValues() > 1)
        return "Values";
    QString text = QString("Value %1").arg(column);
    for (int place = column + columns; place < rows_.MostValues(); place += columns)
        text += QString(", %1").arg(place);
    return text;
}

} // namespace kavro
