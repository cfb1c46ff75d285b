#include "monitor/crossings_form.h"

#include "link/number_text.h"
#include "link/text.h"
#include "monitor/crossing_log.h"
#include "monitor/shown_unit.h"
#include "monitor/threshold_color_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"
#include "ui/read_only_table.h"
#include "ui/usable.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <string_view>

namespace kavro {

namespace {

enum Column { TimeColumn, ValueColumn, CrossedColumn, ReadingColumn, LimitColumn, ColumnCount };

// A text as wide as most of each column.
constexpr std::array<const char*, ColumnCount> Samples = {
    "2031-02-03 04:05:06.789", "255 (FFH) 8250 ch 7, TT-101", "\u25b2 above \u2192 \u25bc below",
    "134.7100 ohms", "134.7100 ohms"};
constexpr int CellRoom = 14; // pixels
constexpr int ShownRows = 4;
constexpr const char* NothingYet = "No value has crossed a threshold.";

QString SideName(Side side) {
    const std::string sign = SideSign(side);
    return QString::fromStdString((sign.empty() ? sign : sign + " ") + SideText(side));
}

// "2031-02-03 04:05:06.789", local.
std::string ShownTime(const WallTime& time) {
    constexpr std::string_view form = "2031-02-03T04:05:06.789";
    std::string text = IsoTime(time).substr(0, form.size());
    text[form.find('T')] = ' ';
    return text;
}

} // namespace

CrossingsForm::CrossingsForm(Session& session, Messages& messages, CrossingWatch& watch, QWidget* parent)
    : QWidget(parent), session_(session), messages_(messages), watch_(watch) {
    setObjectName("CrossingsForm");
    table_ = Named(new QTableWidget, "Crossings", "Crossings of thresholds");
    BuildTable();
    clearBtn_ = Named(new QPushButton("Cl&ear"), "ClearCrossingsBtn", "Clear the list of crossings");
    saveBtn_ = Named(new QPushButton("Sa&ve..."), "SaveCrossingsBtn", "Save the list of crossings");
    connect(clearBtn_, &QPushButton::clicked, this, [this] {
        watch_.Clear();
        ShowNew();
    });
    connect(saveBtn_, &QPushButton::clicked, this, [this] { Guard(messages_, [this] { SaveBtn_Click(); }); });
    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {clearBtn_, saveBtn_}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    buttons->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(table_, 1);
    layout->addLayout(buttons);
    first_ = watch_.Gone();
    ShowNew();
}

void CrossingsForm::BuildTable() {
    ShowReadOnly(*table_, {"Time", "Value", "Crossed", "Reading", "Threshold"});
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setAlternatingRowColors(true);
    table_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    for (std::size_t column = 0; column < Samples.size(); ++column)
        table_->setColumnWidth(static_cast<int>(column),
                               table_->fontMetrics().horizontalAdvance(Samples[column]) + CellRoom);
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->setMinimumHeight(table_->horizontalHeader()->sizeHint().height() +
                             ShownRows * table_->verticalHeader()->defaultSectionSize() +
                             2 * table_->frameWidth());
    QScrollBar* const bar = table_->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this,
            [this, bar](int place) { following_ = place == bar->maximum(); });
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int /*least*/, int most) {
        if (following_)
            bar->setValue(most);
    });
    auto* copy = new QAction("&Copy", table_);
    copy->setObjectName("mnuCopyCrossings");
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, [this] { Copy(); });
    table_->addAction(copy);
    table_->setContextMenuPolicy(Qt::ActionsContextMenu);
}

// What the user looks at stays where it is when rows above it go.
void CrossingsForm::ShowNew() {
    const int gone = static_cast<int>(std::min<std::int64_t>(watch_.Gone() - first_, table_->rowCount()));
    const int place = table_->verticalScrollBar()->value();
    const bool following = following_;
    if (gone > 0)
        table_->model()->removeRows(0, gone);
    first_ = watch_.Gone();
    for (auto next = static_cast<std::size_t>(table_->rowCount()); next < watch_.Kept().size(); ++next)
        AddRow(watch_.Kept()[next]);
    if (gone > 0 && !following)
        table_->verticalScrollBar()->setValue(place - gone);
    following_ = following || table_->rowCount() == 0;
    const bool some = table_->rowCount() > 0;
    SetUsable(*clearBtn_, some, NothingYet);
    SetUsable(*saveBtn_, some, NothingYet);
}

void CrossingsForm::AddRow(const Crossing& crossing) {
    const ChannelValue& value = crossing.Read.Value;
    const auto number = [&](const std::string& text) {
        return QString::fromStdString(
            Trim(ShownNumber(text, session_.DecimalSeparator) + " " + ShownUnit(value.Unit)));
    };
    const std::array<QString, ColumnCount> texts = {
        QString::fromStdString(ShownTime(crossing.Read.Time)), QString::fromStdString(crossing.Name),
        SideName(crossing.From) + " \u2192 " + SideName(crossing.To), number(value.Text),
        number(ShortestText(crossing.Limit))};
    const int row = table_->rowCount();
    table_->insertRow(row);
    for (std::size_t column = 0; column < texts.size(); ++column) {
        auto* cell = new QTableWidgetItem(texts[column]);
        cell->setToolTip(texts[column]);
        table_->setItem(row, static_cast<int>(column), cell);
    }
    Tint(row, crossing.To);
}

void CrossingsForm::Tint(int row, Side side) {
    table_->item(row, CrossedColumn)->setForeground(ThresholdColor(side, table_->palette()));
}

void CrossingsForm::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    for (int row = 0; row < table_->rowCount(); ++row)
        Tint(row, watch_.Kept()[static_cast<std::size_t>(row)].To);
}

// The selected rows, tab separated, a line each.
void CrossingsForm::Copy() const {
    QString text;
    for (int row = 0; row < table_->rowCount(); ++row) {
        if (!table_->item(row, TimeColumn)->isSelected())
            continue;
        for (int column = 0; column < ColumnCount; ++column)
            text += table_->item(row, column)->text() + (column + 1 < ColumnCount ? '\t' : '\n');
    }
    if (!text.isEmpty())
        QApplication::clipboard()->setText(text);
}

// Those that come while the dialog is open are saved, too.
void CrossingsForm::SaveBtn_Click() {
    const QString path = ChooseSaveFile(
        this, {.Title = "Save Crossings", .Kind = "CSV Files", .Suffix = "csv", .Name = "crossings.csv"});
    if (path.isEmpty())
        return;
    const std::vector<Crossing> crossings(watch_.Kept().begin(), watch_.Kept().end());
    session_.ReplaceFile(path.toStdString(), CrossingsHeading(session_) + CrossingLines(session_, crossings));
}

} // namespace kavro
