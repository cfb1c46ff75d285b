#include "map/tag_form.h"

#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/tagged_channels.h"
#include "ui/center_form.h"
#include "ui/named.h"
#include "ui/ok_cancel.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <set>

namespace kavro {

namespace {

enum Column { TagColumn, NoteColumn, ColumnCount };

constexpr int NoteLines = 3;
constexpr int MostRows = 8; // of the table as it opens
constexpr int TagColumns = 26;
constexpr int NoteColumns = 44;
constexpr const char* Title = "Tags";
constexpr const char* NoLineFile =
    "Tags and notes live in a line file, and none is open.\n\nFile > Back Up Line... makes one of the "
    "modules in the list, File > Open... opens one that you have.";

// "8250 at address 5 (05H)"
std::string ModuleText(const ModuleRecord& record) {
    return Trim(ShownModel(record.Model)) + " at address " + ShownAddress(record.Address);
}

// What is pasted may have several lines.
std::string OneLine(QString text) {
    for (QChar& character : text)
        if (character.category() == QChar::Other_Control || character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph)
            character = ' ';
    return text.trimmed().toStdString();
}

std::string Lines(const QString& text) {
    return text.trimmed().toStdString();
}

QString Shown(const std::string& text) {
    return QString::fromStdString(text);
}

} // namespace

TagForm::TagForm(Session& session, Messages& messages, int index, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages), address_(session.ModuleTable[index].Address) {
    setObjectName("TagForm");
    setWindowTitle(Title);
    const ModuleTags tags = *TagsOf(session, index);
    before_.Model = tags.Model;
    auto* module = Named(new QLabel(Shown(ModuleText(session.ModuleTable[index]))), "Module", {});
    module->setTextFormat(Qt::PlainText);
    tag_ = Named(new QLineEdit(Shown(tags.Module.Tag)), "Tag", "Tag");
    note_ = Named(new QPlainTextEdit(Shown(tags.Module.Note)), "Note", "Note");
    note_->setTabChangesFocus(true);
    note_->setFixedHeight(fontMetrics().lineSpacing() * NoteLines + 2 * note_->frameWidth() +
                          static_cast<int>(2 * note_->document()->documentMargin()));
    auto* rows = new QFormLayout;
    rows->addRow("Module:", module);
    rows->addRow("&Tag:", tag_);
    rows->addRow("&Note:", note_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    if (QWidget* channels = BuildChannels(tags))
        layout->addWidget(channels, 1);
    layout->addWidget(OkAndCancel(*this, [this] { OKBtn_Click(); }));
    before_ = Entered();
    tag_->setFocus();
    tag_->selectAll();
    CenterForm(*this);
}

QWidget* TagForm::BuildChannels(const ModuleTags& tags) {
    std::set<int> numbers;
    for (const TaggedChannel& channel : TaggedChannelsOf(tags.Model))
        numbers.insert(channel.Number);
    for (const auto& [number, tag] : tags.Channels)
        numbers.insert(number);
    channels_.assign(numbers.begin(), numbers.end());
    if (channels_.empty())
        return nullptr;
    table_ = Named(new QTableWidget(static_cast<int>(channels_.size()), ColumnCount), "Channels", "Channels");
    FillChannels(tags);
    const int text = fontMetrics().averageCharWidth();
    table_->setHorizontalHeaderLabels({"Tag", "Note"});
    table_->setColumnWidth(TagColumn, TagColumns * text);
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->setWordWrap(false);
    table_->setTabKeyNavigation(false); // from a cell that is edited Tab goes on to the next one
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                            QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    const int shown = std::min(table_->rowCount(), MostRows);
    table_->setMinimumHeight(table_->horizontalHeader()->sizeHint().height() +
                             shown * table_->verticalHeader()->defaultSectionSize() +
                             2 * table_->frameWidth());
    table_->setMinimumWidth(table_->verticalHeader()->sizeHint().width() + (TagColumns + NoteColumns) * text);
    auto* label = new QLabel("&Channels:");
    label->setBuddy(table_);
    auto* place = new QWidget;
    auto* layout = new QVBoxLayout(place);
    layout->setContentsMargins({});
    layout->addWidget(label);
    layout->addWidget(table_, 1);
    return place;
}

void TagForm::FillChannels(const ModuleTags& tags) {
    const std::vector<TaggedChannel> known = TaggedChannelsOf(tags.Model);
    for (int row = 0; row < table_->rowCount(); ++row) {
        const int number = channels_[static_cast<std::size_t>(row)];
        const auto channel = std::ranges::find(known, number, &TaggedChannel::Number);
        QString heading = QString::number(number);
        if (channel != known.end() && !channel->Name.empty())
            heading += ": " + Shown(channel->Name);
        table_->setVerticalHeaderItem(row, new QTableWidgetItem(heading));
        const auto found = tags.Channels.find(number);
        const TagAndNote tag = found == tags.Channels.end() ? TagAndNote{} : found->second;
        table_->setItem(row, TagColumn, new QTableWidgetItem(Shown(tag.Tag)));
        table_->setItem(row, NoteColumn, new QTableWidgetItem(Shown(tag.Note)));
    }
}

ModuleTags TagForm::Entered() const {
    ModuleTags tags;
    tags.Model = before_.Model;
    tags.Module = {OneLine(tag_->text()), Lines(note_->toPlainText())};
    for (int row = 0; table_ && row < table_->rowCount(); ++row) {
        const auto cell = [&](Column column) { return table_->item(row, column)->text(); };
        const TagAndNote tag = {OneLine(cell(TagColumn)), Lines(cell(NoteColumn))};
        if (tag != TagAndNote{})
            tags.Channels[channels_[static_cast<std::size_t>(row)]] = tag;
    }
    return tags;
}

void TagForm::OKBtn_Click() {
    if (table_ && table_->isAncestorOf(focusWidget()))
        table_->setFocus(); // takes what is being typed in a cell
    const ModuleTags entered = Entered();
    const bool kept = entered == before_ || Guard(messages_, [&] {
                          session_.Tags.Keep(address_, entered);
                          session_.Tags.Modules[address_] = entered;
                      });
    if (kept)
        accept();
}

void EditTags(Session& session, Messages& messages, int index, QWidget* parent) {
    if (session.Tags.Path.empty())
        return messages.Show(NoLineFile, Title);
    if (index < 0)
        return messages.Show("No module selected.", "Error");
    // Somebody else may have changed the file; the function is replaced by what it does.
    if (!Guard(messages, [reload = session.Tags.Reload] { reload(); }))
        return;
    if (!TagsOf(session, index))
        return messages.Show("The line file does not have the module " +
                                 ModuleText(session.ModuleTable[index]) + ":\n" + session.Tags.Path +
                                 "\n\nBack up the line again (File > Back Up Line...), so that it is in it.",
                             Title);
    TagForm form(session, messages, index, parent);
    // Where the window below is closed by the program's end, or that of its own.
    if (auto* below = qobject_cast<QDialog*>(parent))
        QObject::connect(below, &QDialog::finished, &form, &QDialog::reject);
    form.exec();
}

} // namespace kavro
