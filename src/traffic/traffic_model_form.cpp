#include "traffic/traffic_model_form.h"

#include "traffic/time_slice.h"
#include "ui/fixed_font.h"
#include "ui/readable_color.h"

#include <QApplication>
#include <QFont>
#include <QPalette>

#include <algorithm>

namespace kavro {

namespace {

constexpr std::chrono::seconds KnownFor{1};
constexpr std::size_t LongestModelCommand = 7; // "$05M", checksum and carriage return
constexpr qsizetype LongestCell = 400;         // characters; laying out thousands takes too long
constexpr qsizetype LongestTip = 4000;

QString Cut(QString text, qsizetype longest) {
    if (text.size() > longest)
        text = text.left(longest) + "...";
    return text;
}

bool TellsModel(std::string_view sent) {
    return sent.size() >= 4 && sent.size() <= LongestModelCommand && sent[0] == '$' && sent[3] == 'M';
}

bool IsFixed(TrafficColumn column) {
    return column != TrafficColumn::Outcome && column != TrafficColumn::Words;
}

QVariant Alignment(TrafficColumn column) {
    const bool number =
        column == TrafficColumn::Since || column == TrafficColumn::Baud || column == TrafficColumn::ReplyTime;
    return QVariant(Qt::AlignVCenter | (number ? Qt::AlignHCenter : Qt::AlignLeft));
}

// On a white background; a dark one lightens them.
QColor OutcomeColour(const TrafficRow& row, const KnownModules& known) {
    switch (row.Outcome) {
    case TrafficOutcome::Complete:
        return row.Refused() ? QColor(0x8A5A00) : HasFailed(row, known) ? QColor(0xB00020) : QColor();
    case TrafficOutcome::Stray:
        return {0x6A3DB0};
    default:
        return {0xB00020};
    }
}

} // namespace

TrafficModel::TrafficModel(const Session& session, const TrafficLog& log)
    : session_(session), log_(log), next_(log.First()), began_(next_), addresses_(ModuleTable::Size) {
    style_.DecimalSeparator = session.DecimalSeparator;
}

int TrafficModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(numbers_.size());
}

int TrafficModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(TrafficHeadings.size());
}

QString TrafficModel::CellText(int row, TrafficColumn column) const {
    const std::int64_t number = Number(row);
    if (number < log_.First()) // dropped since the last look
        return {};
    return QString::fromStdString(ColumnText({log_, known_, style_}, number, column));
}

QVariant TrafficModel::Colour(const TrafficRow& row) const {
    const QColor colour = OutcomeColour(row, known_);
    if (!colour.isValid())
        return {};
    return Readable(colour, QApplication::palette().color(QPalette::Base));
}

QVariant TrafficModel::data(const QModelIndex& index, int role) const {
    const auto column = static_cast<TrafficColumn>(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return Cut(CellText(index.row(), column), LongestCell);
    case Qt::ToolTipRole:
        return "<qt>" + Cut(CellText(index.row(), column), LongestTip).toHtmlEscaped(); // wraps
    case Qt::FontRole:
        return IsFixed(column) ? FixedFont() : QVariant();
    case Qt::TextAlignmentRole:
        return Alignment(column);
    case Qt::ForegroundRole:
        return Number(index.row()) < log_.First() ? QVariant() : Colour(log_.Row(Number(index.row())));
    default:
        return {};
    }
}

QVariant TrafficModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::DisplayRole)
        return TrafficHeadings[static_cast<std::size_t>(section)];
    return role == Qt::TextAlignmentRole ? Alignment(static_cast<TrafficColumn>(section)) : QVariant();
}

void TrafficModel::SetFilter(const TrafficFilter& filter) {
    filter_ = filter;
    BeginAnew();
}

void TrafficModel::SetHex(bool hex) {
    style_.Hex = hex;
    if (!filter_.Text.empty())
        return BeginAnew();
    if (!numbers_.empty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

void TrafficModel::SetPaused(bool paused) {
    pausedAt_ = paused ? std::optional(log_.End()) : std::nullopt;
}

void TrafficModel::BeginAnew() {
    beginResetModel();
    numbers_.clear();
    next_ = began_ = log_.First();
    endResetModel();
}

// A map may have been opened or modules found since; what was learned from replies stays.
void TrafficModel::RefreshKnown() {
    const auto now = std::chrono::steady_clock::now();
    if (now < knownUntil_)
        return;
    knownUntil_ = now + KnownFor;
    known_ = KnownModules(session_);
    for (const auto& [sent, received] : learned_)
        Learn(sent, received);
}

// The session's list is newer than old rows are.
void TrafficModel::Learn(std::string_view sent, std::string_view received) {
    if (const auto address = AddressIn(sent); address && !known_.Record(*address))
        known_.Learn(sent, received);
}

void TrafficModel::See(const TrafficRow& row) {
    if (const auto address = AddressIn(row.Sent))
        addresses_[static_cast<std::size_t>(*address)] = true;
    if (row.Outcome != TrafficOutcome::Complete || !TellsModel(row.Sent))
        return;
    Learn(row.Sent, row.Received);
    learned_.insert_or_assign(std::string(row.Sent), std::string(row.Received));
}

bool TrafficModel::Advance(int milliseconds) {
    RefreshKnown();
    next_ = std::max(next_, log_.First());
    std::vector<std::int64_t> passed;
    for (TimeSlice slice(milliseconds); next_ < Target() && !slice.Over(); ++next_) {
        const TrafficRow row = log_.Row(next_);
        See(row);
        if (Passes(filter_, row, known_, style_.Hex))
            passed.push_back(next_);
    }
    if (!passed.empty()) {
        beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(passed.size()) - 1);
        numbers_.insert(numbers_.end(), passed.begin(), passed.end());
        endInsertRows();
    }
    return next_ >= Target();
}

double TrafficModel::Share() const {
    const auto all = static_cast<double>(Target() - began_);
    return all <= 0 ? 1 : std::clamp(static_cast<double>(next_ - began_) / all, 0.0, 1.0);
}

std::int64_t TrafficModel::Waiting() const {
    return log_.End() - std::max(Target(), log_.First());
}

int TrafficModel::LetGo() {
    const int gone = RowOf(log_.First());
    if (gone > 0) {
        beginRemoveRows({}, 0, gone - 1);
        numbers_.erase(numbers_.begin(), numbers_.begin() + gone);
        endRemoveRows();
    }
    return gone;
}

int TrafficModel::RowOf(std::int64_t number) const {
    return static_cast<int>(std::ranges::lower_bound(numbers_, number) - numbers_.begin());
}

TrafficModel::Place TrafficModel::NextFailure(int row, int milliseconds) const {
    TimeSlice slice(milliseconds);
    for (++row; row < rowCount(); ++row) {
        const bool failed = Number(row) >= log_.First() && HasFailed(log_.Row(Number(row)), known_);
        if (failed || slice.Over())
            return {row, failed};
    }
    return {};
}

} // namespace kavro
