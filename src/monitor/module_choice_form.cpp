#include "monitor/module_choice_form.h"

#include "map/tag_label_form.h"
#include "monitor/value_text.h"
#include "ui/center_form.h"
#include "ui/named.h"
#include "ui/ok_cancel.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

namespace {

constexpr int FewestRows = 6, MostRows = 20; // of the list as it opens
constexpr int Columns = 40;                  // of its text
constexpr const char* Question = "&Modules to read. The others are not asked, and cost the line nothing.";

} // namespace

ModuleChoiceForm::ModuleChoiceForm(const Session& session, const std::set<std::int16_t>& leftOut,
                                   QWidget* parent)
    : QDialog(parent), session_(session), before_(leftOut) {
    setObjectName("ModuleChoiceForm");
    setWindowTitle("Modules");
    list_ = Named(new QListWidget, "ModuleList", "Modules to read");
    list_->setMinimumWidth(fontMetrics().averageCharWidth() * Columns);
    Fill();
    const int rows = std::clamp(list_->count(), FewestRows, MostRows);
    list_->setMinimumHeight(std::max(list_->sizeHintForRow(0), fontMetrics().height()) * rows +
                            2 * list_->frameWidth());
    auto* question = new QLabel(Question);
    question->setWordWrap(true);
    question->setBuddy(list_);
    auto* all = Named(new QPushButton("&All"), "AllBtn", "Read all modules");
    auto* none = Named(new QPushButton("&None"), "NoneBtn", "Read no module");
    connect(all, &QPushButton::clicked, this, [this] { TickAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { TickAll(false); });
    auto* foot = new QHBoxLayout;
    for (QPushButton* button : {all, none}) {
        button->setAutoDefault(false);
        foot->addWidget(button);
    }
    foot->addStretch(1);
    foot->addWidget(OkAndCancel(*this, [this] { accept(); }));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(question);
    layout->addWidget(list_, 1);
    layout->addLayout(foot);
    list_->setFocus();
    CenterForm(*this);
}

void ModuleChoiceForm::Fill() {
    for (int index = 0; index < session_.ModuleCount; ++index) {
        const ModuleTags* const tags = TagsOf(session_, index);
        const QString tag = tags ? ShownTag(tags->Module) : QString();
        auto* item = new QListWidgetItem(
            QString::fromStdString(ModuleText(session_, index)) + (tag.isEmpty() ? tag : "  " + tag), list_);
        const bool read = !before_.contains(session_.ModuleTable[index].Address);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(read ? Qt::Checked : Qt::Unchecked);
    }
    list_->setCurrentRow(0);
}

void ModuleChoiceForm::TickAll(bool ticked) {
    for (int row = 0; row < list_->count(); ++row)
        list_->item(row)->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
}

std::set<std::int16_t> ModuleChoiceForm::LeftOut() const {
    std::set<std::int16_t> leftOut = before_;
    for (int row = 0; row < list_->count(); ++row)
        leftOut.erase(session_.ModuleTable[row].Address);
    for (int row = 0; row < list_->count(); ++row)
        if (list_->item(row)->checkState() != Qt::Checked)
            leftOut.insert(session_.ModuleTable[row].Address);
    return leftOut;
}

std::optional<std::set<std::int16_t>> ChooseModules(const Session& session,
                                                    const std::set<std::int16_t>& leftOut, QWidget* parent) {
    ModuleChoiceForm form(session, leftOut, parent);
    if (auto* below = qobject_cast<QDialog*>(parent)) // which may be closed first
        QObject::connect(below, &QDialog::finished, &form, &QDialog::reject);
    return form.exec() == QDialog::Accepted ? std::optional(form.LeftOut()) : std::nullopt;
}

} // namespace kavro
