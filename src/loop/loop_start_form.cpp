#include "loop/loop_start_form.h"

#include "link/runtime_failure.h"
#include "loop/loop_check_form.h"
#include "loop/loop_words.h"
#include "monitor/csv_log.h"
#include "project/backup.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <vector>

namespace kavro {

namespace {

constexpr int LineCharacters = 64;

struct Way {
    const char* Name;
    const char* Text;
    int Answer;
};

enum StartAnswer {
    Cancelled = QDialog::Rejected,
    GoOn = QDialog::Accepted,
    BeginAnew,
    DriveOutputs,
    InputsOnly
};

// A question with a few answers, the first of which is the default one.
class Question : public QDialog {
public:
    Question(const char* name, const std::string& text, const std::vector<Way>& ways, QWidget* parent)
        : QDialog(parent) {
        setObjectName(name);
        setWindowTitle("Loop Check");
        auto* told = Named(new QLabel(QString::fromStdString(text)), "Told", {});
        told->setTextFormat(Qt::PlainText);
        told->setWordWrap(true);
        told->setMinimumWidth(fontMetrics().averageCharWidth() * LineCharacters);
        rows_ = new QFormLayout(this);
        rows_->addRow(told);
        buttons_ = new QDialogButtonBox;
        for (const auto& [buttonName, buttonText, answer] : ways) {
            QString spoken = buttonText;
            auto* button = Named(buttons_->addButton(buttonText, QDialogButtonBox::ActionRole), buttonName,
                                 spoken.remove('&'));
            connect(button, &QPushButton::clicked, this, [this, answer = answer] { done(answer); });
            if (&buttonName == &ways.front().Name)
                button->setDefault(true);
        }
    }

    void AddEntry(const char* label, QLineEdit* entry) { rows_->addRow(label, entry); }

    int Ask() {
        rows_->addRow(buttons_);
        CenterForm(*this);
        return exec();
    }

private:
    QFormLayout* rows_;
    QDialogButtonBox* buttons_;
};

std::string AskLineFile(const Session& session, QWidget* window) {
    if (!session.Tags.Path.empty())
        return session.Tags.Path;
    return ChooseOpenFile(window, {.Title = "Loop Check", .Kind = "Line Files", .Suffixes = {"kavro.json"}})
        .toStdString();
}

// Nothing when it is cancelled.
std::optional<LoopRecord> AskRecord(const LineFile& file, const std::string& path, QWidget* window) {
    const std::optional<LoopRecord> before = LoadLoopRecord(LoopCheckPath(path));
    const std::string name = file.Name.empty() ? NameFromPath(path) : file.Name;
    int answer = BeginAnew;
    if (before)
        answer = Question("LoopResumeForm", GoOnQuestion(*before),
                          {{"GoOnBtn", "&Go on", GoOn},
                           {"AnewBtn", "&Begin anew", BeginAnew},
                           {"CancelBtn", "Cancel", Cancelled}},
                          window)
                     .Ask();
    if (answer == Cancelled)
        return std::nullopt;
    return answer == GoOn ? TakenUp(*before, file) : NewLoopRecord(file, name, IsoTime(SystemTime()), before);
}

int AskToDrive(const LoopRecord& record, std::string& person, QWidget* window) {
    const bool drives =
        std::ranges::any_of(record.Entries, [](const auto& each) { return IsOutput(each.Point.Kind); });
    std::vector<Way> ways = {{"WatchBtn", drives ? "&Inputs only" : "&Begin", InputsOnly}};
    if (drives)
        ways.push_back({"DriveBtn", "&Drive outputs", DriveOutputs});
    ways.push_back({"CancelBtn", "Cancel", Cancelled});
    Question question("LoopStartForm", BeginQuestion(record), ways, window);
    auto* entry = Named(new QLineEdit(QString::fromStdString(person)), "Person", "Person");
    question.AddEntry("&Person:", entry);
    const int answer = question.Ask();
    person = entry->text().trimmed().toStdString();
    return answer;
}

} // namespace

void CheckLoops(Session& session, Messages& messages, const std::string& person, QWidget* window) {
    const std::string path = AskLineFile(session, window);
    if (path.empty())
        return;
    LoopPlan plan;
    plan.Path = LoopCheckPath(path);
    plan.File = LoadLineFile(path);
    if (LoopPointsOf(plan.File).empty())
        throw RuntimeFailure("There are no channels in \"" + path + "\". Choose another line file.");
    auto record = AskRecord(plan.File, path, window);
    if (!record)
        return;
    plan.Record = std::move(*record);
    plan.Person = person;
    plan.Now = [] { return IsoTime(SystemTime()); };
    const int answer = AskToDrive(plan.Record, plan.Person, window);
    if (answer == Cancelled)
        return;
    plan.Drives = answer == DriveOutputs;
    LoopCheckForm(session, messages, path, std::move(plan), window).exec();
}

} // namespace kavro
