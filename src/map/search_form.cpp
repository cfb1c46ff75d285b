#include "map/search_form.h"

#include "link/baud.h"
#include "link/network_address.h"
#include "link/text.h"
#include "map/time_text.h"
#include "ui/center_form.h"
#include "ui/key_filter.h"
#include "ui/named.h"
#include "ui/note.h"
#include "ui/ok_cancel.h"
#include "ui/spin_buttons.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

namespace kavro {

namespace {

constexpr int HighestAddress = 255;
constexpr SpinRange AnswerRange = {ShortestAnswerWithinMs, LongestAnswerWithinMs};
constexpr const char* NoRateText =
    "No baud rate is ticked, so this search will find nothing. Tick the rates of the modules.";
constexpr const char* NoTime = "-";
constexpr const char* WrongAnswerWithin =
    "The time to answer within must be a number from 5 to 1000, in milliseconds.";
constexpr const char* FastText =
    "Asks all addresses at one baud rate before it goes on to the next, and waits for the beginning of each "
    "answer only as long as the box beside says. A module that takes longer is asked again.";
constexpr const char* AnswerText =
    "Milliseconds from the end of a command to the beginning of the answer, 5 to 1000. Raise it for radio "
    "modems, converters and servers between here and the line.";

constexpr const char* TimeHint =
    "What a line takes where nobody answers; reading the modules that do may add a moment for each.";

using RateFlags = decltype(PortSettingsRecord::BaudEnabled);

// The rates in code order, so 115200 stands before 57600.
QString RatesText(const RateFlags& enabled) {
    QStringList rates;
    for (std::int16_t code = 0; code < BaudCodeCount; ++code)
        if (enabled[static_cast<std::size_t>(code)] == 1)
            rates << QString::number(BaudFromCode(code));
    return rates.join(", ");
}

QLineEdit* NumberBox(const QString& name, const QString& accessibleName) {
    auto* box = Named(new QLineEdit, name, accessibleName);
    FilterKeys(*box, FilterDigitKey);
    return box;
}

std::optional<std::int32_t> NumberIn(const QLineEdit& box) {
    return CappedNumber(box.text().toStdString());
}

void Explain(QWidget& control, const char* text) {
    control.setToolTip(text);
    control.setAccessibleDescription(text);
}

} // namespace

SearchForm::SearchForm(Session& session, Messages& messages, QWidget* parent, bool rateIsFixed)
    : QDialog(parent), session_(session), messages_(messages), rateIsFixed_(rateIsFixed) {
    setObjectName("SearchForm");
    setWindowTitle("Search");

    // Two blanks between "exist" and "modules": an empty name stands between them.
    auto* note = Named(new QLabel("Search all exist  modules in network, if you just want to do new module "
                                  "initialization, select Cancel button to skip it."),
                       "Label1", {});
    note->setWordWrap(true);
    note->setMinimumWidth(fontMetrics().averageCharWidth() * 70);
    auto* comPort = Named(new QLabel(QString("COM%1").arg(session.Line.CurrentPort)), "ComPort", {});
    baudRate_ = Named(new QLabel, "BaudRate", {});
    baudRate_->setWordWrap(true);
    rateNote_ = new Note("BaudRateNote", *this);
    auto* checks = BuildBaudChecks();
    hiAddress_ = NumberBox("HiAddress", "Search address range from 0 to");
    fastSearch_ = Named(new QCheckBox("&Fast search"), "FastSearch", "Fast search");
    Explain(*fastSearch_, FastText);
    searchTime_ = Named(new QLabel, "SearchTime", {});
    Explain(*searchTime_, TimeHint);
    auto* buttons = OkAndCancel(*this, [this] { Guard(messages_, [this] { OKBtn_Click(); }); });

    auto* layout = new QFormLayout(this);
    layout->addRow(note);
    layout->addRow("COM port:", comPort);
    layout->addRow("Search baud rates:", baudRate_);
    layout->addRow(checks);
    layout->addRow(rateNote_);
    layout->addRow("Search &address range from 0 to", hiAddress_);
    layout->addRow(fastSearch_, BuildAnswerWithin());
    layout->addRow("This will take:", searchTime_);
    layout->addRow(buttons);
    Fill();
    hiAddress_->setFocus();
    CenterForm(*this);
}

QGroupBox* SearchForm::BuildBaudChecks() {
    auto* group = new QGroupBox("Baud rate to search");
    baudCheck_ = AddBaudChecks(*new QGridLayout(group), 2);
    for (QCheckBox* check : baudCheck_)
        connect(check, &QCheckBox::toggled, this, [this] { ShowChoice(); });
    return group;
}

QLayout* SearchForm::BuildAnswerWithin() {
    answerWithin_ = NumberBox("AnswerWithin", "Modules answer within, in milliseconds");
    Explain(*answerWithin_, AnswerText);
    auto* label = new QLabel("answer &within");
    label->setBuddy(answerWithin_);
    answerRow_ = new QWidget;
    auto* row = new QHBoxLayout(answerRow_);
    row->setContentsMargins({});
    row->addWidget(label);
    row->addSpacing(row->spacing());
    auto* spin = new QHBoxLayout;
    spin->setSpacing(0);
    spin->addWidget(answerWithin_);
    AddSpinButtons(*spin, *answerWithin_, "AnswerSpin", AnswerRange);
    row->addLayout(spin, 1);
    row->addWidget(new QLabel("ms"));
    auto* outer = new QHBoxLayout;
    outer->addWidget(answerRow_);
    return outer;
}

void SearchForm::Fill() {
    const PortSettingsRecord& settings = session_.Line.SettingsOf(session_.Line.CurrentPort);
    for (std::size_t code = 0; code < baudCheck_.size(); ++code)
        baudCheck_[code]->setChecked(settings.BaudEnabled[code] == 1);
    hiAddress_->setText(QString::number(HighestAddress));
    hiAddress_->selectAll();
    fastSearch_->setChecked(session_.Preferences.FastSearch);
    answerWithin_->setText(QString::number(session_.Preferences.AnswerWithin));
    for (QLineEdit* box : {hiAddress_, answerWithin_})
        connect(box, &QLineEdit::textChanged, this, [this] { ShowChoice(); });
    connect(fastSearch_, &QCheckBox::toggled, this, [this] { ShowChoice(); });
    ShowChoice();
}

bool SearchForm::Fast() const {
    return fastSearch_->isChecked();
}

std::array<std::int16_t, 9> SearchForm::Rates() const {
    RateFlags enabled{};
    for (std::size_t code = 0; code < baudCheck_.size(); ++code)
        enabled[code] = baudCheck_[code]->isChecked() ? 1 : 0;
    return enabled;
}

std::optional<std::int16_t> SearchForm::Highest() const {
    const auto highest = NumberIn(*hiAddress_);
    if (!highest || *highest > HighestAddress)
        return std::nullopt;
    return static_cast<std::int16_t>(*highest);
}

std::optional<std::int16_t> SearchForm::AnswerWithin() const {
    const auto answer = NumberIn(*answerWithin_);
    if (!answer || *answer < AnswerRange.Low || *answer > AnswerRange.High)
        return std::nullopt;
    return static_cast<std::int16_t>(*answer);
}

void SearchForm::ShowChoice() {
    answerRow_->setEnabled(Fast());
    baudRate_->setText(RatesText(Rates()));
    rateNote_->Tell(baudRate_->text().isEmpty() ? NoRateText : rateIsFixed_ ? FixedRateText : "");
    const QString time = QString::fromStdString(TimeTaken());
    searchTime_->setText(time.isEmpty() ? NoTime : time);
}

// Empty when the search could not begin, or find anything, with these entries.
std::string SearchForm::TimeTaken() const {
    const auto highest = Highest();
    const auto answer = AnswerWithin();
    if (!highest || (Fast() && !answer))
        return {};
    SearchScope scope = ScopeOf(session_.Line, *highest);
    scope.BaudEnabled = rateIsFixed_ ? FirstOf(Rates()) : Rates();
    scope.AnswerWithinMs = answer.value_or(scope.AnswerWithinMs);
    return SearchTimeText(scope, Fast());
}

void SearchForm::reject() {
    session_.SearchAccepted = 0;
    QDialog::reject();
}

bool SearchForm::CheckEntries() {
    const auto highest = NumberIn(*hiAddress_);
    if (!highest) {
        messages_.Show("Please input a number.", "Error");
        return false;
    }
    if (*highest > HighestAddress) {
        messages_.Show("Number can not exceed " + std::to_string(HighestAddress) + ".", "Error");
        return false;
    }
    if (Fast() && !AnswerWithin()) {
        messages_.Show(WrongAnswerWithin, "Error");
        answerWithin_->setFocus();
        answerWithin_->selectAll();
        return false;
    }
    return true;
}

// What cannot be remembered for the next start still counts for this run.
void SearchForm::Keep(const Preferences& preferences) {
    if (preferences == session_.Preferences)
        return;
    session_.Preferences = preferences;
    Guard(messages_, [&] { session_.SavePreferences(preferences); });
}

void SearchForm::OKBtn_Click() {
    if (!CheckEntries())
        return;
    Preferences chosen = session_.Preferences; // the others stay
    chosen.FastSearch = Fast();
    chosen.AnswerWithin = AnswerWithin().value_or(chosen.AnswerWithin);
    Keep(chosen);
    if (!isVisible())
        return; // closed while a message was up
    session_.Line.SettingsOf(session_.Line.CurrentPort).BaudEnabled = Rates();
    session_.SearchHighAddress = *Highest();
    session_.SearchAccepted = -1;
    accept();
}

} // namespace kavro
