#include "project/compare_form.h"

#include "project/comparison_text.h"
#include "ui/center_form.h"
#include "ui/make_room.h"
#include "ui/named.h"
#include "ui/read_only_table.h"
#include "ui/usable.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

namespace {

constexpr int TableCharacters = 96;
constexpr int TableRows = 14;
constexpr int LongestColumn = 40; // characters; the whole text is in the tooltip

struct Column {
    const char* Heading;
    std::string ComparisonRow::*Text;
};
constexpr Column Columns[] = {{"Tag", &ComparisonRow::Tag},         {"Model", &ComparisonRow::Model},
                              {"Address", &ComparisonRow::Address}, {"What", &ComparisonRow::What},
                              {"File", &ComparisonRow::File},       {"Line", &ComparisonRow::Line}};

} // namespace

CompareForm::CompareForm(kavro::Session& session, kavro::Messages& messages, const std::string& path,
                         LineFile file, QWidget* parent)
    : LineWorkForm(session, messages, parent, "CompareForm", "Compare with Backup"), file_(std::move(file)) {
    auto* shownPath = Named(new QLabel("File: " + QString::fromStdString(path)), "File", {});
    summary_ = Named(new QLabel("Not compared yet."), "Summary", {});
    for (QLabel* label : {shownPath, summary_}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    BuildTable();
    compare_ = Button("CompareBtn", "&Compare again", [this] { Operate([this] { Compare(); }); });
    restore_ = Button("RestoreBtn", "&Restore...", [this] {
        toRestore_ = comparison_;
        accept();
    });
    copy_ = Button("CopyBtn", "C&opy", [this] { QApplication::clipboard()->setText(Text()); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(shownPath);
    layout->addLayout(BuildProgress());
    layout->addWidget(summary_);
    layout->addWidget(table_, 1);
    layout->addLayout(BuildButtons({compare_, copy_, restore_}));
    ShowRows();
    ShowRunning(false);
    CenterForm(*this);
}

void CompareForm::BuildTable() {
    table_ = Named(new QTableWidget, "Differences", "What differs between the file and the line");
    QStringList headings;
    for (const Column& column : Columns)
        headings << column.Heading;
    ShowReadOnly(*table_, headings);
    table_->horizontalHeader()->setStretchLastSection(true);
    const QFontMetrics font(table_->font());
    table_->setMinimumSize(font.averageCharWidth() * TableCharacters, font.lineSpacing() * TableRows);
}

void CompareForm::Begun() {
    compare_->click();
}

void CompareForm::Compare() {
    comparison_.reset();
    table_->setRowCount(0);
    summary_->setText("Comparing...");
    const WorkEnd end = Work([this](const LineWork& work) { comparison_ = CompareLine(work, file_); });
    if (comparison_)
        summary_->setText(QString::fromStdString(SummaryText(*comparison_)));
    else
        summary_->setText(end == WorkEnd::Stopped ? "Stopped; nothing can be said of the line."
                                                  : "The line could not be compared.");
    ShowRows();
    MakeRoom(*this); // the summary may have two lines
}

void CompareForm::ShowRows() {
    const auto rows = comparison_ ? RowsOf(*comparison_) : std::vector<ComparisonRow>();
    table_->setRowCount(static_cast<int>(rows.size()));
    for (int row = 0; row < table_->rowCount(); ++row)
        for (int column = 0; column < table_->columnCount(); ++column) {
            const auto text =
                QString::fromStdString(rows[static_cast<std::size_t>(row)].*Columns[column].Text);
            auto* cell = new QTableWidgetItem(text);
            cell->setToolTip(text);
            table_->setItem(row, column, cell);
        }
    table_->resizeColumnsToContents();
    const int longest = fontMetrics().averageCharWidth() * LongestColumn;
    for (int column = 0; column + 1 < table_->columnCount(); ++column) // the last one takes what is left
        table_->setColumnWidth(column, std::min(table_->columnWidth(column), longest));
    if (table_->rowCount() > 0)
        table_->setCurrentCell(0, 0);
}

// Columns between tabs, as spreadsheets take them.
QString CompareForm::Text() const {
    QStringList headings;
    for (const Column& column : Columns)
        headings << column.Heading;
    QStringList lines = {summary_->text(), headings.join('\t')};
    for (const ComparisonRow& row : RowsOf(*comparison_)) {
        QStringList cells;
        for (const Column& column : Columns)
            cells << QString::fromStdString(row.*column.Text);
        lines << cells.join('\t');
    }
    return lines.join('\n') + '\n';
}

void CompareForm::ShowRunning(bool running) {
    SetUsable(*compare_, !running, "The line is being read.");
    SetUsable(*copy_, !running && comparison_, "Nothing has been compared yet.");
    const bool any = comparison_ && std::ranges::any_of(comparison_->Modules,
                                                        [](const auto& module) { return !module.Same(); });
    SetUsable(*restore_, !running && any, "There is nothing to restore.");
}

} // namespace kavro
