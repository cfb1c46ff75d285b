#include "project/difference_tree_form.h"

#include "ui/named.h"

#include <QHeaderView>

#include <set>
#include <string>
#include <utility>

namespace kavro {

namespace {

enum Column { NameColumn, FileColumn, LineColumn, ColumnCount };
constexpr int AddressRole = Qt::UserRole; // of a module that can be written
constexpr int WidthCharacters = 84;
constexpr int NameCharacters = 44;
constexpr int ValueCharacters = 18;
constexpr int Rows = 16;

QTreeWidgetItem* DifferenceItem(const QString& name, const LineDifference& difference) {
    auto* item = new QTreeWidgetItem(
        {name, QString::fromStdString(difference.File.Text), QString::fromStdString(difference.Line.Text)});
    for (const int column : {FileColumn, LineColumn})
        item->setToolTip(column, item->text(column));
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

bool IsTicked(const QTreeWidgetItem& item) {
    return item.checkState(NameColumn) == Qt::Checked;
}

} // namespace

DifferenceTree::DifferenceTree() {
    Named(this, "Differences", "What is to be written");
    setHeaderLabels({"Module and setting", "File", "Line"});
    header()->setStretchLastSection(true);
    const int character = fontMetrics().averageCharWidth();
    setMinimumSize(character * WidthCharacters, fontMetrics().lineSpacing() * Rows);
    setColumnWidth(NameColumn, character * NameCharacters);
    setColumnWidth(FileColumn, character * ValueCharacters);
    setUniformRowHeights(true);
}

void DifferenceTree::ShowAll(const LineComparison& comparison) {
    clear();
    for (const ModuleComparison& module : comparison.Modules)
        if (LeftAloneText(module).empty())
            AddModule(module);
    AddAwaiting(comparison);
    AddLeftAlone(comparison);
    expandAll();
    if (topLevelItemCount() > 0)
        setCurrentItem(topLevelItem(0));
}

QTreeWidgetItem* DifferenceTree::AddTop(const QString& text) {
    auto* item = new QTreeWidgetItem(this, {text});
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    item->setFirstColumnSpanned(true);
    return item;
}

void DifferenceTree::AddModule(const ModuleComparison& module) {
    QTreeWidgetItem* top = nullptr;
    for (const LineDifference& difference : module.Differences) {
        if (!CanBeWritten(module, difference))
            continue;
        if (!top) {
            top = AddTop(QString::fromStdString(ShownModule(module.File)));
            top->setFlags(top->flags() | Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate);
            top->setData(NameColumn, AddressRole, module.File.Address);
        }
        auto* item = DifferenceItem(QString::fromStdString(difference.Setting), difference);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(NameColumn, Qt::Checked);
        top->addChild(item);
    }
}

void DifferenceTree::AddAwaiting(const LineComparison& comparison) {
    QTreeWidgetItem* top = nullptr;
    for (const ModuleComparison& module : comparison.Modules)
        for (const LineDifference& difference : module.Differences) {
            if (!LeftAloneText(module).empty() || CanBeWritten(module, difference))
                continue;
            if (!top)
                top = AddTop("Only in the initialisation state");
            top->addChild(DifferenceItem(
                QString::fromStdString(difference.Setting + " of the " + ShownModule(module.File)),
                difference));
        }
}

void DifferenceTree::AddLeftAlone(const LineComparison& comparison) {
    QTreeWidgetItem* top = nullptr;
    for (const ModuleComparison& module : comparison.Modules) {
        const QString text = QString::fromStdString(LeftAloneText(module));
        if (text.isEmpty())
            continue;
        if (!top)
            top = AddTop("Left alone");
        auto* item = new QTreeWidgetItem(top, {text});
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        item->setFirstColumnSpanned(true);
        item->setToolTip(NameColumn, text);
    }
}

Choice DifferenceTree::Ticked() const {
    std::set<std::pair<int, std::string>> ticked;
    for (int row = 0; row < topLevelItemCount(); ++row) {
        const QTreeWidgetItem& module = *topLevelItem(row);
        const QVariant address = module.data(NameColumn, AddressRole);
        for (int index = 0; index < module.childCount() && address.isValid(); ++index)
            if (IsTicked(*module.child(index)))
                ticked.emplace(address.toInt(), module.child(index)->text(NameColumn).toStdString());
    }
    return [ticked](const SavedModule& module, const LineDifference& difference) {
        return ticked.contains({module.Address, difference.Setting});
    };
}

DifferenceTree::Count DifferenceTree::TickedCount() const {
    Count count;
    for (int row = 0; row < topLevelItemCount(); ++row) {
        const QTreeWidgetItem& module = *topLevelItem(row);
        std::size_t settings = 0;
        for (int index = 0; index < module.childCount(); ++index)
            settings += IsTicked(*module.child(index)) ? 1 : 0;
        count.Modules += settings > 0 ? 1 : 0;
        count.Settings += settings;
    }
    return count;
}

} // namespace kavro
