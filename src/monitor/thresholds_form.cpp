#include "monitor/thresholds_form.h"

#include "link/number_text.h"
#include "link/text.h"
#include "monitor/shown_unit.h"
#include "monitor/threshold_color_form.h"
#include "ui/center_form.h"
#include "ui/named.h"
#include "ui/ok_cancel.h"
#include "ui/tinted_label.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <utility>

namespace kavro {

namespace {

constexpr const char* Title = "Thresholds";
constexpr int LookMs = 250; // for a new reading
constexpr int EntryColumns = 16;
constexpr int LongestEntry = 40; // characters

QString Shown(const std::string& text) {
    return QString::fromStdString(text);
}

std::string EntryText(const std::optional<double>& limit, const std::string& separator) {
    return limit ? ShownNumber(ShortestText(*limit), separator) : std::string();
}

} // namespace

ThresholdsForm::ThresholdsForm(Session& session, Messages& messages, int index,
                               std::function<ChannelValue()> present, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages), present_(std::move(present)) {
    setObjectName("ThresholdsForm");
    setWindowTitle(Title);
    const ChannelValue value = present_();
    key_ = KeyOf(session, index, value);
    unit_ = Shown(ShownUnit(value.Unit));
    auto* name = Named(new QLabel(Shown(NameOfValue(session, index, value))), "ValueName", {});
    name->setTextFormat(Qt::PlainText);
    reading_ = Named(new TintedLabel, "Reading", {});
    const Thresholds set = ThresholdsOf(session, index, value);
    auto* rows = new QFormLayout(this);
    rows->addRow("Value:", name);
    rows->addRow("Reading:", reading_);
    high_ = AddEntry(*rows, "High", set.High);
    low_ = AddEntry(*rows, "Low", set.Low);
    auto* buttons = OkAndCancel(*this, [this] { OKBtn_Click(); });
    auto* none = Named(new QPushButton("&None"), "NoneBtn", "No thresholds");
    none->setToolTip("Empties both: the value has no thresholds then.");
    none->setAutoDefault(false);
    connect(none, &QPushButton::clicked, this, [this] {
        high_.Line->clear();
        low_.Line->clear();
    });
    buttons->addButton(none, QDialogButtonBox::ResetRole);
    rows->addRow(buttons);
    auto* looks = new QTimer(this);
    connect(looks, &QTimer::timeout, this, [this] { ShowReading(); });
    looks->start(LookMs);
    ShowReading();
    high_.Line->setFocus();
    high_.Line->selectAll();
    CenterForm(*this);
}

ThresholdsForm::Entry ThresholdsForm::AddEntry(QFormLayout& rows, const char* name,
                                               const std::optional<double>& limit) {
    const QString inUnit = unit_.isEmpty() ? QString() : " in " + unit_;
    auto* line = Named(new QLineEdit(Shown(EntryText(limit, session_.DecimalSeparator))), name,
                       QString(name) + " threshold" + inUnit);
    line->setMaxLength(LongestEntry);
    line->setMinimumWidth(line->fontMetrics().averageCharWidth() * EntryColumns);
    line->setPlaceholderText("none");
    Entry entry{line, new Note(QString(name) + "Note", *this)};
    connect(line, &QLineEdit::textChanged, this, [this, told = entry.Told] {
        told->Tell({});
        ShowReading();
    });
    auto* place = new QHBoxLayout;
    place->addWidget(line, 1);
    place->addWidget(new QLabel(unit_));
    auto* label = new QLabel("&" + QString(name) + ":");
    label->setBuddy(line);
    rows.addRow(label, place);
    rows.addRow(QString(), entry.Told);
    return entry;
}

// Coloured as by the thresholds that are entered.
void ThresholdsForm::ShowReading() {
    if (!low_.Line)
        return; // in the making
    const ChannelValue value = present_();
    const bool read = value.State == ValueState::Ok;
    const Side side = read ? SideOf({NumberIn(low_), NumberIn(high_)}, value.Number) : Side::Within;
    const std::string number =
        ShownNumber(value.Text, session_.DecimalSeparator) + " " + ShownUnit(value.Unit);
    const std::string text = read ? Trim(std::string(SideSign(side)) + " " + number) : StateText(value.State);
    reading_->SetTint(side == Side::Within ? QColor() : ThresholdColor(side, palette()));
    reading_->setText(Shown(text));
}

std::optional<double> ThresholdsForm::NumberIn(const Entry& entry) const {
    std::string text = entry.Line->text().trimmed().toStdString();
    NormalizeDecimalPoint(text, session_.DecimalSeparator);
    return PlainNumber(text);
}

// Nothing when an entry is refused.
std::optional<Thresholds> ThresholdsForm::Entered() const {
    const Thresholds entered{NumberIn(low_), NumberIn(high_)};
    for (const auto& [entry, number] : {std::pair(&high_, entered.High), {&low_, entered.Low}})
        if (!number && !entry->Line->text().trimmed().isEmpty()) {
            Refuse(*entry, "This is no number. Enter one" + (unit_.isEmpty() ? QString() : " in " + unit_) +
                               ", or leave it empty.");
            return std::nullopt;
        }
    if (entered.Low && entered.High && *entered.Low > *entered.High) {
        Refuse(low_, "The low threshold is above the high one. Enter " + high_.Line->text().trimmed() +
                         " or less.");
        return std::nullopt;
    }
    return entered;
}

void ThresholdsForm::Refuse(const Entry& entry, const QString& why) const {
    entry.Told->Tell(why);
    entry.Line->setFocus();
    entry.Line->selectAll();
}

void ThresholdsForm::OKBtn_Click() {
    const auto entered = Entered();
    if (entered && Guard(messages_, [&] { SetThresholds(session_, key_, *entered); }))
        accept();
}

bool EditThresholds(Session& session, Messages& messages, int index, std::function<ChannelValue()> present,
                    QWidget* parent) {
    if (!CanHaveThresholds(present())) {
        messages.Show(
            "Thresholds are for numbers with a unit, and this value is the state of several digital "
            "channels. It has none.",
            Title);
        return false;
    }
    ThresholdsForm form(session, messages, index, std::move(present), parent);
    // Where the window below is closed by the program's end, or that of its own.
    if (auto* below = qobject_cast<QDialog*>(parent))
        QObject::connect(below, &QDialog::finished, &form, &QDialog::reject);
    return form.exec() == QDialog::Accepted;
}

} // namespace kavro
