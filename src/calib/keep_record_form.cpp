#include "calib/keep_record_form.h"

#include "calib/record_html.h"
#include "calib/record_json.h"
#include "link/runtime_failure.h"
#include "pdf/html_pdf.h"
#include "ui/busy_pointer.h"
#include "ui/choose_file.h"
#include "ui/named.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kavro {

namespace {

constexpr const char* PageSuffixes[] = {".pdf", ".html"};
constexpr const char* JsonSuffix = ".json";

struct RecordFiles {
    std::string PageSuffix, Page; // for people
    std::string Json;
};

enum class Choice { TryAgain, OtherFolder, Discard };

std::string PdfOf(const CalibrationRecord& record) {
    for (const RecordFit& fit : RecordFits)
        if (auto page = PdfPageOfHtml(RecordHtml(record, fit)))
            return std::move(*page);
    return PdfOfHtml(RecordHtml(record, *std::rbegin(RecordFits)));
}

// A system without fonts makes no PDF.
RecordFiles FilesOf(const CalibrationRecord& record) {
    const std::string json = RecordJson(record, 0) + "\n";
    try {
        return {PageSuffixes[0], PdfOf(record), json};
    } catch (const RuntimeFailure&) {
        return {PageSuffixes[1], RecordHtml(record, RecordFits[0]), json};
    }
}

bool IsTaken(const QString& path) {
    const auto exists = [&](const char* suffix) { return QFileInfo::exists(path + suffix); };
    return exists(JsonSuffix) || std::ranges::any_of(PageSuffixes, exists);
}

// Without suffix; a second record of the day gets "-2".
std::string FreePath(const std::string& folder, const CalibrationRecord& record) {
    const std::string date = QDate::currentDate().toString(Qt::ISODate).toStdString();
    const QString path =
        QDir(QString::fromStdString(folder)).filePath(QString::fromStdString(RecordName(record, date)));
    QString free = path;
    for (int number = 2; IsTaken(free); ++number)
        free = path + "-" + QString::number(number);
    return free.toStdString();
}

// What went wrong, and then there is neither; empty when nothing did.
std::string SaveAt(const Session& session, const std::string& path, const RecordFiles& files) {
    const std::string page = path + files.PageSuffix;
    try {
        session.ReplaceFile(page, files.Page);
    } catch (const RuntimeFailure& failure) {
        return failure.what();
    }
    try {
        session.ReplaceFile(path + JsonSuffix, files.Json);
        return {};
    } catch (const RuntimeFailure& failure) {
        QFile::remove(QString::fromStdString(page));
        return failure.what();
    }
}

std::string SavedAs(std::string path, const RecordFiles& files) {
    path += files.PageSuffix;
    return path + " and " + JsonSuffix + ".";
}

Choice Ask(QWidget* parent, const std::string& failure) {
    QMessageBox box(parent);
    box.setObjectName("RecordQuestion");
    box.setWindowTitle("Calibration Record");
    box.setIcon(QMessageBox::Warning);
    box.setTextFormat(Qt::PlainText);
    box.setText("The record of the calibration is not saved.");
    box.setInformativeText(QString::fromStdString(failure) +
                           "\n\nThe module keeps what it has stored, whatever becomes of the record.");
    auto* again = Named(box.addButton("&Try Again", QMessageBox::AcceptRole), "TryAgainBtn", "Try Again");
    auto* other = Named(box.addButton("Choose &Folder...", QMessageBox::ActionRole), "OtherFolderBtn",
                        "Choose another folder");
    auto* discard =
        Named(box.addButton("&Discard Record", QMessageBox::DestructiveRole), "DiscardBtn", "Discard Record");
    box.setDefaultButton(other);
    box.setEscapeButton(again);
    box.exec();
    if (box.clickedButton() == other)
        return Choice::OtherFolder;
    return box.clickedButton() == discard ? Choice::Discard : Choice::TryAgain;
}

void Tell(Session& session, const std::string& text) {
    if (!session.Note.empty())
        session.Note += ' ';
    session.Note += text;
}

// Nobody can be asked: better in a place that was not chosen than nowhere.
void SaveAtLast(Session& session, const CalibrationRecord& record, const RecordFiles& files,
                const std::string& failure) {
    for (const QString& folder : {QDir::homePath(), QDir::tempPath()}) {
        const std::string path = FreePath(folder.toStdString(), record);
        if (SaveAt(session, path, files).empty())
            return Tell(session,
                        "The record of the calibration is saved as " + SavedAs(path, files) + " " + failure);
    }
    Tell(session, "The record of the calibration is lost. " + failure);
}

// False when the user has discarded it.
bool Save(Session& session, std::string folder, const CalibrationRecord& record, QWidget* parent) {
    const RecordFiles files = FilesOf(record);
    std::string path = FreePath(folder, record);
    while (true) {
        const std::string failure = SaveAt(session, path, files);
        if (session.Ending && !failure.empty()) {
            SaveAtLast(session, record, files, failure);
            return true;
        }
        if (failure.empty()) {
            const std::string name = QFileInfo(QString::fromStdString(path)).fileName().toStdString();
            if (!session.Ending) // where only what went wrong is told
                Tell(session, "Calibration record saved as " + SavedAs(name, files));
            return true;
        }
        const Choice choice = Ask(parent, failure);
        if (choice == Choice::Discard) {
            Tell(session, "The record of the calibration was discarded.");
            return false;
        }
        if (choice == Choice::TryAgain)
            continue;
        const QString chosen = ChooseFolder(parent, "Folder of Records", QString::fromStdString(folder));
        if (chosen.isEmpty())
            continue;
        folder = chosen.toStdString();
        path = FreePath(folder, record);
    }
}

void Append(const Session& session, Messages& messages, const CalibrationRecord& record) {
    const auto found = session.Tags.Modules.find(record.Address);
    const bool has = !session.Tags.Path.empty() && found != session.Tags.Modules.end() &&
                     found->second.Model == record.Model;
    if (!has)
        return;
    try {
        session.Tags.AppendHistory(record.Address, record.Model, RecordJson(record, -1));
    } catch (const RuntimeFailure& failure) {
        messages.Show(std::string("The history of the module in the line file does not have this record. ") +
                          failure.what(),
                      "Calibration Record");
    }
}

} // namespace

void KeepRecord(Session& session, Messages& messages, const std::string& folder,
                const CalibrationRecord& record, QWidget* parent) {
    bool kept = false;
    {
        const ArrowPointer arrow; // the user may be asked while the pointer is busy
        kept = Save(session, folder, record, parent);
    }
    if (kept)
        Append(session, messages, record);
}

} // namespace kavro
