#include "calib/record_box_form.h"

#include "link/number_text.h"
#include "link/text.h"
#include "ui/choose_file.h"
#include "ui/make_room.h"
#include "ui/named.h"

#include <QCheckBox>
#include <QDate>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStandardPaths>

namespace kavro {

namespace {

constexpr int LabelColumn = 0, EntryColumn = 1, BehindColumn = 2;
constexpr int EntryColumns = 32;  // of text
constexpr int LongestEntry = 200; // characters; a page has room for it
constexpr int NoteLines = 2;
constexpr double ColdestAmbient = -90, HottestAmbient = 100; // degrees C

QString Shown(const std::string& text) {
    return QString::fromStdString(text);
}

std::string Trimmed(const QLineEdit& entry) {
    return entry.text().trimmed().toStdString();
}

QDate DateIn(const std::string& text) {
    return QDate::fromString(Shown(text), "yyyy-MM-dd");
}

std::string FirstFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).toStdString();
}

const std::string& Or(const std::string& text, const std::string& otherwise) {
    return text.empty() ? otherwise : text;
}

} // namespace

RecordBox::RecordBox(Session& session, Messages& messages, QWidget* parent)
    : QWidget(parent), session_(session), messages_(messages) {
    setObjectName("RecordBox");
    const RecordPreferences& last = session.Preferences.Record;
    keep_ = Named(new QCheckBox("&Keep a record"), "KeepRecord", "Keep a record");
    keep_->setToolTip("Saves what was found and left as PDF and JSON when the guide is closed.");
    panel_ = Named(new QWidget, "RecordPanel", {});
    rows_ = new QGridLayout(panel_);
    rows_->setContentsMargins({});
    rows_->setColumnStretch(EntryColumn, 1);
    operator_ = AddEntry("Operator", "O&perator:", Or(last.Operator, session.UserName));
    instrument_ = AddEntry("Instrument", "Reference &instrument:", last.Instrument);
    due_ = AddEntry("InstrumentDue", "Instrument &due:", last.InstrumentDue);
    due_.Line->setPlaceholderText("year-month-day");
    connect(due_.Line, &QLineEdit::textChanged, this, [this] { TellOfDue(); });
    ambient_ = AddEntry("Ambient", "&Ambient temperature:", {}, "\u00b0C");
    AddNote();
    const std::string tolerance = ShortestText(last.TolerancePercent);
    tolerance_ = AddEntry("Tolerance", "&Tolerance:", ShownNumber(tolerance, session.DecimalSeparator),
                          "% of full scale");
    folder_ = AddEntry("RecordFolder", "&Folder:", Or(last.Folder, FirstFolder()));
    AddFolder();
    TellOfDue();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(keep_);
    layout->addWidget(panel_);
    panel_->hide();
    connect(keep_, &QCheckBox::toggled, this, [this](bool wanted) {
        panel_->setVisible(wanted);
        MakeRoom(*window());
        Ticked(wanted);
    });
}

RecordBox::Entry RecordBox::AddEntry(const char* name, const QString& label, const std::string& text,
                                     const QString& behind) {
    const QString spoken = QString(label).remove('&').remove(':');
    Entry entry{Named(new QLineEdit(Shown(text)), name, behind.isEmpty() ? spoken : spoken + " in " + behind),
                new Note(QString(name) + "Note", *panel_)};
    entry.Line->setMaxLength(LongestEntry);
    entry.Line->setMinimumWidth(entry.Line->fontMetrics().averageCharWidth() * EntryColumns);
    auto* shown = new QLabel(label);
    shown->setBuddy(entry.Line);
    const int row = rows_->rowCount();
    rows_->addWidget(shown, row, LabelColumn);
    rows_->addWidget(entry.Line, row, EntryColumn);
    rows_->addWidget(new QLabel(behind), row, BehindColumn);
    rows_->addWidget(entry.Told, row + 1, EntryColumn, 1, 2);
    connect(entry.Line, &QLineEdit::textChanged, entry.Told, [told = entry.Told] { told->Tell({}); });
    return entry;
}

void RecordBox::AddNote() {
    note_ = Named(new QPlainTextEdit, "RecordNote", "Note");
    note_->setTabChangesFocus(true);
    note_->setFixedHeight(fontMetrics().lineSpacing() * NoteLines + 2 * note_->frameWidth() +
                          static_cast<int>(2 * note_->document()->documentMargin()));
    auto* shown = new QLabel("N&ote:");
    shown->setBuddy(note_);
    const int row = rows_->rowCount();
    rows_->addWidget(shown, row, LabelColumn, Qt::AlignTop);
    rows_->addWidget(note_, row, EntryColumn, 1, 2);
}

// Behind the entry that was added last, in place of its empty label.
void RecordBox::AddFolder() {
    folder_.Line->setMaxLength(4096);
    auto* browse =
        Named(new QPushButton("Brow&se..."), "RecordFolderBtn", "Browse for the folder of records");
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString folder = ChooseFolder(this, "Folder of Records", Shown(Folder()));
        if (!folder.isEmpty())
            folder_.Line->setText(folder);
    });
    rows_->addWidget(browse, rows_->rowCount() - 2, BehindColumn);
}

bool RecordBox::Wanted() const {
    return keep_->isChecked();
}

CalibrationEntries RecordBox::Entries() const {
    const auto ambient = NumberIn(ambient_);
    CalibrationEntries entries{Trimmed(*operator_.Line), Trimmed(*instrument_.Line), Trimmed(*due_.Line),
                               ambient ? ShortestText(*ambient) : "",
                               note_->toPlainText().trimmed().toStdString()};
    entries.TolerancePercent = NumberIn(tolerance_).value_or(entries.TolerancePercent);
    return entries;
}

std::string RecordBox::Folder() const {
    return Trimmed(*folder_.Line);
}

std::optional<double> RecordBox::NumberIn(const Entry& entry) const {
    std::string text = Trimmed(*entry.Line);
    NormalizeDecimalPoint(text, session_.DecimalSeparator);
    return PlainNumber(text);
}

QString RecordBox::WrongDue() const {
    const std::string text = Trimmed(*due_.Line);
    return text.empty() || DateIn(text).isValid()
               ? QString()
               : "This is no date. Enter year, month and day, as " +
                     QDate::currentDate().toString("yyyy-MM-dd") + ", or leave it empty.";
}

QString RecordBox::WrongAmbient() const {
    const auto number = NumberIn(ambient_);
    const bool good =
        Trimmed(*ambient_.Line).empty() || (number && *number >= ColdestAmbient && *number <= HottestAmbient);
    return good ? QString() : "Enter a number of degrees from -90 to 100, or leave it empty.";
}

QString RecordBox::WrongTolerance() const {
    const auto number = NumberIn(tolerance_);
    return number && *number > 0 && *number <= LargestTolerancePercent
               ? QString()
               : "Enter a number above 0, up to 100. A common one is 0" + Shown(session_.DecimalSeparator) +
                     "1.";
}

QString RecordBox::WrongFolder() const {
    const QFileInfo folder(Shown(Folder()));
    if (Folder().empty())
        return "Name the folder that records go to.";
    if (folder.exists() && !folder.isDir())
        return "This is a file. Choose a folder.";
    return folder.exists() && !folder.isWritable()
               ? QString("You may not write there. Choose another folder.")
               : QString();
}

// An instrument that is overdue can be used all the same.
void RecordBox::TellOfDue() const {
    const QDate due = DateIn(Trimmed(*due_.Line));
    due_.Told->Tell(due.isValid() && due < QDate::currentDate()
                        ? QString("The instrument was due on that day. The record will say so.")
                        : QString());
}

bool RecordBox::Accept() {
    if (!Wanted())
        return true;
    const std::pair<const Entry&, QString> wrongs[] = {{due_, WrongDue()},
                                                       {ambient_, WrongAmbient()},
                                                       {tolerance_, WrongTolerance()},
                                                       {folder_, WrongFolder()}};
    QLineEdit* first = nullptr;
    for (const auto& [entry, wrong] : wrongs) {
        if (wrong.isEmpty())
            continue;
        entry.Told->Tell(wrong);
        first = first ? first : entry.Line;
    }
    if (!first) {
        Guard(messages_, [this] { Remember(); });
        return true;
    }
    first->setFocus();
    first->selectAll();
    return false;
}

void RecordBox::Remember() {
    const CalibrationEntries entries = Entries();
    const RecordPreferences record{entries.Operator, entries.Instrument, entries.InstrumentDue,
                                   entries.TolerancePercent, Folder()};
    if (session_.Preferences.Record == record)
        return;
    session_.Preferences.Record = record;
    session_.SavePreferences(session_.Preferences);
}

} // namespace kavro
