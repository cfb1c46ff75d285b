#include "project/report_form.h"

#include "link/runtime_failure.h"
#include "pdf/html_pdf.h"
#include "project/backup.h"
#include "ui/busy_pointer.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"

#include <QDateTime>
#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int EntryColumns = 48; // of a path
constexpr int LabelColumn = 0, EntryColumn = 1, BrowseColumn = 2;

struct Kind {
    const char* Name;
    const char* Suffix;
};

Kind KindOf(ReportKind kind) {
    return kind == ReportKind::Pdf ? Kind{"PDF Files", "pdf"} : Kind{"HTML Files", "html"};
}

} // namespace

ReportForm::ReportForm(const Session& session, Messages& messages, const ReportFacts& offered,
                       QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages), port_(offered.Port) {
    setObjectName("ReportForm");
    setWindowTitle("Report");
    entries_ = new QGridLayout;
    file_ = AddEntry("LineFile", "&Line file:", offered.Path);
    AddBrowse(*file_, "LineFileBtn", "Line File", "Line Files");
    check_ = AddEntry("LineCheck", "Line &check (JSON, optional):", {});
    check_->setToolTip("Network > Line Check saves one as JSON.");
    AddBrowse(*check_, "LineCheckBtn", "Line Check", "Line Checks");
    person_ = AddEntry("Person", "Pe&rson:", offered.Person);
    saved_ = Named(new QLabel, "Saved", {});
    saved_->setTextFormat(Qt::PlainText);
    saved_->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(entries_);
    layout->addWidget(saved_);
    layout->addStretch(1);
    layout->addLayout(BuildButtons());
    CenterForm(*this);
    file_->setFocus();
}

QLineEdit* ReportForm::AddEntry(const char* name, const char* label, const std::string& text) {
    QString spoken = label;
    auto* entry = Named(new QLineEdit(QString::fromStdString(text)), name, spoken.remove('&').remove(':'));
    entry->setMinimumWidth(entry->fontMetrics().averageCharWidth() * EntryColumns);
    auto* shown = new QLabel(label);
    shown->setBuddy(entry);
    const int row = entries_->rowCount();
    entries_->addWidget(shown, row, LabelColumn);
    entries_->addWidget(entry, row, EntryColumn);
    return entry;
}

// Behind the entry that was added last.
void ReportForm::AddBrowse(QLineEdit& entry, const char* name, const QString& title, const QString& kind) {
    auto* browse = Named(new QPushButton("Browse..."), name, "Browse for the " + title.toLower());
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, [this, &entry, title, kind] {
        const QString path = ChooseOpenFile(this, {.Title = title, .Kind = kind, .Suffixes = {"json"}});
        if (!path.isEmpty())
            entry.setText(path);
    });
    entries_->addWidget(browse, entries_->rowCount() - 1, BrowseColumn);
}

QBoxLayout* ReportForm::BuildButtons() {
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    const auto add = [&](const char* name, const char* text, const auto& clicked) {
        QString spoken = text;
        auto* button = Named(new QPushButton(text), name, spoken.remove('&').remove('.'));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, clicked);
        row->addWidget(button);
        return button;
    };
    add("SavePdfBtn", "Save as &PDF...", [this] { Save(ReportKind::Pdf); })->setDefault(true);
    add("SaveHtmlBtn", "Save as &HTML...", [this] { Save(ReportKind::Html); });
    add("ExitBtn", "E&xit", [this] { reject(); });
    return row;
}

ReportSource ReportForm::Source() const {
    ReportSource source;
    source.Facts = {file_->text().trimmed().toStdString(), port_,
                    QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm").toStdString(),
                    person_->text().trimmed().toStdString()};
    source.CheckPath = check_->text().trimmed().toStdString();
    if (source.Facts.Path.empty())
        throw RuntimeFailure(
            "Name the line file that the report is about. File > Back Up Line... makes one.");
    return source;
}

// The files are read first: what is wrong with them is told before a name is asked for.
void ReportForm::Save(ReportKind kind) {
    saved_->clear();
    Guard(messages_, [this, kind] {
        const ReportSource source = Source();
        const std::string html = LoadReport(source);
        const auto [name, suffix] = KindOf(kind);
        const std::string offered = NameFromPath(source.Facts.Path) + "." + suffix;
        const QString path = ChooseSaveFile(this, {.Title = "Save Report",
                                                   .Kind = name,
                                                   .Suffix = suffix,
                                                   .Name = QString::fromStdString(offered)});
        if (path.isEmpty())
            return;
        RefuseOwnSource(source, path.toStdString());
        const BusyPointer busy;
        session_.ReplaceFile(path.toStdString(), kind == ReportKind::Pdf ? PdfOfHtml(html) : html);
        saved_->setText("Saved as " + path);
    });
}

} // namespace kavro
