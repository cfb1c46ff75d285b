#include "diag/output_control_form.h"

#include "diag/output_bar_form.h"
#include "diag/output_entry_form.h"
#include "diag/reading_rows_form.h"
#include "map/tag_label_form.h"
#include "ui/fixed_font.h"
#include "ui/make_room.h"
#include "ui/named.h"
#include "ui/note.h"
#include "ui/tinted_label.h"
#include "ui/warning_sign.h"

#include <QHBoxLayout>
#include <QTimer>

#include <cmath>

namespace kavro {

namespace {

constexpr int ReadBackLines = 2; // kept, so that the window does not jump when a text grows
constexpr int TagColumns = 24;
constexpr const char* WidestValue = "-00.000";

TintedLabel* Label(const QString& name, const std::string& text) {
    return Named(new TintedLabel(QString::fromStdString(text)), name, {});
}

} // namespace

OutputControl::OutputControl(OutputDescription description)
    : QGroupBox(description.Title), description_(std::move(description)) {
    const OutputDescription& output = description_;
    entry_ = new OutputEntry({output.Title, output.NameEnd, output.Bounds, output.Separator,
                              [this](double value) { Enter(value); }});
    readBack_ = Named(new QLabel, "ReadBack" + output.NameEnd, {});
    readBack_->setTextFormat(Qt::PlainText);
    readBack_->setWordWrap(true);
    readBack_->setMinimumHeight(ReadBackLines * readBack_->fontMetrics().lineSpacing());
    readBack_->hide();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildValue());
    layout->addWidget(readBack_);
    layout->addLayout(BuildRange());
    layout->addWidget(entry_);
}

QLayout* OutputControl::BuildValue() {
    data_ = Label("DA_data" + description_.NameEnd, description_.Designed);
    data_->setFont(FixedFont());
    data_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    data_->setMinimumWidth(QFontMetrics(data_->font()).horizontalAdvance(WidestValue));
    unit_ = Label(description_.UnitName.front(), description_.Unit);
    value_ = new QHBoxLayout;
    value_->addWidget(new QLabel("D/A data:"));
    value_->addWidget(data_);
    value_->addWidget(unit_);
    value_->addStretch(1);
    return value_;
}

QLayout* OutputControl::BuildRange() {
    const OutputDescription& output = description_;
    bar_ = new OutputBar("DaScroll" + output.NameEnd, output.Title, output.Minimum,
                         {.Scroll =
                              [this](int position) {
                                  entered_.reset();
                                  ShowValue(position);
                              },
                          .Change = [this](int position) { Change(position); }});
    auto* range = new QHBoxLayout;
    range->addWidget(Label("LowRange" + output.NameEnd, output.Low));
    range->addWidget(bar_, 1);
    range->addWidget(Label("HighRange" + output.NameEnd, output.High));
    if (output.UnitName.size() > 1)
        range->addWidget(Label(output.UnitName[1], output.Unit));
    return range;
}

BarPosition OutputControl::At(int position) const {
    return {position, OutputBarSteps - description_.Minimum};
}

int OutputControl::Nearest(BarPosition bar) const {
    const double steps = At(0).Total;
    return static_cast<int>(std::lround(steps * bar.Position / bar.Total));
}

// Sent as a movement of the bar is, so that keys that come faster do not let time-outs pile up either.
void OutputControl::Enter(double value) {
    entered_ = BarOf(value, description_.Bounds);
    bar_->Place(Nearest(*entered_));
    ShowText(description_.Shown(*entered_));
}

void OutputControl::Change(int position) {
    const BarPosition bar = entered_.value_or(At(position));
    entered_.reset();
    description_.Change(bar);
}

void OutputControl::Stand(double value) {
    const BarPosition bar = BarOf(value, description_.Bounds);
    entered_.reset();
    bar_->Stand(Nearest(bar));
    ShowText(description_.Shown(bar));
}

void OutputControl::ShowReadBack(const ReadBackWords& words) {
    const QString text = (words.Differs ? WarningSign : "") + QString::fromStdString(words.Text);
    if (text == readBack_->text())
        return;
    readBack_->setText(text);
    readBack_->show();
    if (words.Differs)
        Speak(*readBack_);
    QTimer::singleShot(0, this, [this] { MakeRoom(*window()); }); // when the layouts around it know of it
}

void OutputControl::ShowTag(const TagAndNote& tag) {
    if (!tag_) {
        tag_ = new TagLabel("Tag" + description_.NameEnd, TagColumns);
        value_->addWidget(tag_);
    }
    tag_->Show(tag);
    const QString shown = ShownTag(tag);
    bar_->setAccessibleName(description_.Title + (shown.isEmpty() ? shown : ", " + shown));
    bar_->setToolTip(TagTip(tag));
}

void OutputControl::ShowValue(int position) {
    ShowText(description_.Shown(At(position)));
}

void OutputControl::ShowText(const std::string& text) {
    data_->setText(QString::fromStdString(text));
}

void OutputControl::SendDue() {
    bar_->SendDue();
}

void OutputControl::Confirm() {
    bar_->Confirm();
}

void OutputControl::ShowStale(bool stale) {
    if (stale) {
        entered_.reset();
        bar_->Revert();
        ShowValue(bar_->value());
    }
    bar_->setEnabled(!stale);
    entry_->setEnabled(!stale);
    readBack_->setEnabled(!stale);
    const QColor tint = stale ? QColor(StaleTint) : QColor();
    data_->SetTint(tint);
    unit_->SetTint(tint);
    unit_->setText(QString::fromStdString(description_.Unit) + (stale ? StaleMark : ""));
}

} // namespace kavro
