#include "project/replace_tables_form.h"

#include "map/module_access.h"
#include "ui/named.h"
#include "ui/read_only_table.h"

#include <QHeaderView>

namespace kavro {

namespace {

constexpr int FewestRows = 6; // in sight
constexpr int AnswerColumn = 3;
constexpr int WidestColumn = 30; // characters
constexpr const char* AnswerTexts[] = {"silent", "answers, but not well", "answers"};

void Prepare(QTableWidget& table, const QStringList& headings) {
    ShowReadOnly(table, headings);
    table.horizontalHeader()->setStretchLastSection(true);
    table.horizontalHeader()->setHighlightSections(false);
    table.setMinimumHeight(table.horizontalHeader()->sizeHint().height() +
                           FewestRows * table.verticalHeader()->defaultSectionSize());
}

void AddRow(QTableWidget& table, const std::vector<std::string>& texts) {
    const int row = table.rowCount();
    table.insertRow(row);
    int column = 0;
    for (const std::string& text : texts) {
        auto* cell = new QTableWidgetItem(QString::fromStdString(text));
        cell->setToolTip(cell->text()); // a long one is cut off
        table.setItem(row, column++, cell);
    }
}

void FitColumns(QTableWidget& table) {
    table.resizeColumnsToContents();
    const int widest = table.fontMetrics().averageCharWidth() * WidestColumn;
    for (int column = 0; column < table.columnCount(); ++column)
        table.setColumnWidth(column, std::min(table.columnWidth(column), widest));
}

} // namespace

SavedModuleTable::SavedModuleTable() {
    Named(this, "Modules", "Modules of the line file");
    Prepare(*this, {"Address", "Model", "Tag", "Now"});
}

void SavedModuleTable::ShowModules(const std::vector<SavedModule>& modules) {
    setRowCount(0);
    for (const SavedModule& module : modules)
        AddRow(*this, {ShownAddress(module.Address), module.Model, module.Tags.Tag, "not asked"});
    FitColumns(*this);
}

void SavedModuleTable::ShowAnswer(int row, Presence answer) {
    item(row, AnswerColumn)->setText(AnswerTexts[static_cast<std::size_t>(answer)]);
    scrollToItem(item(row, 0));
}

std::optional<std::size_t> SavedModuleTable::Chosen() const {
    const auto rows = selectionModel()->selectedRows();
    if (rows.isEmpty())
        return std::nullopt;
    return static_cast<std::size_t>(rows.first().row());
}

DifferenceTable::DifferenceTable() {
    Named(this, "Settings", "Settings of the new module and of the file");
    Prepare(*this, {"Setting", "New module has", "File has"});
}

void DifferenceTable::ShowDifferences(const std::vector<LineDifference>& differences) {
    setRowCount(0);
    for (const LineDifference& each : differences)
        AddRow(*this, {each.Setting, each.Line.Text, each.File.Text});
    FitColumns(*this);
}

} // namespace kavro
