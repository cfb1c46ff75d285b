#include "diag/output_control_form.h"

#include "diag/output_bar_form.h"
#include "diag/reading_rows_form.h"
#include "map/tag_label_form.h"
#include "ui/fixed_font.h"
#include "ui/named.h"
#include "ui/tinted_label.h"

#include <QHBoxLayout>

namespace kavro {

namespace {

constexpr int TagColumns = 24;
constexpr const char* WidestValue = "-00.000";

TintedLabel* Label(const QString& name, const std::string& text) {
    return Named(new TintedLabel(QString::fromStdString(text)), name, {});
}

} // namespace

OutputControl::OutputControl(OutputDescription description)
    : QGroupBox(description.Title), description_(std::move(description)) {
    const OutputDescription& output = description_;
    bar_ = new OutputBar("DaScroll" + output.NameEnd, output.Title, output.Minimum,
                         {.Scroll = [this](int position) { ShowValue(position); },
                          .Change = [this](int position) { description_.Change(position); }});
    data_ = Label("DA_data" + output.NameEnd, output.Designed);
    data_->setFont(FixedFont());
    data_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    data_->setMinimumWidth(QFontMetrics(data_->font()).horizontalAdvance(WidestValue));
    unit_ = Label(output.UnitName.front(), output.Unit);

    value_ = new QHBoxLayout;
    value_->addWidget(new QLabel("D/A data:"));
    value_->addWidget(data_);
    value_->addWidget(unit_);
    value_->addStretch(1);
    auto* range = new QHBoxLayout;
    range->addWidget(Label("LowRange" + output.NameEnd, output.Low));
    range->addWidget(bar_, 1);
    range->addWidget(Label("HighRange" + output.NameEnd, output.High));
    if (output.UnitName.size() > 1)
        range->addWidget(Label(output.UnitName[1], output.Unit));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(value_);
    layout->addLayout(range);
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
    data_->setText(QString::fromStdString(description_.Shown(position)));
}

void OutputControl::SendDue() {
    bar_->SendDue();
}

void OutputControl::Confirm() {
    bar_->Confirm();
}

void OutputControl::ShowStale(bool stale) {
    if (stale) {
        bar_->Revert();
        ShowValue(bar_->value());
    }
    bar_->setEnabled(!stale);
    const QColor tint = stale ? QColor(StaleTint) : QColor();
    data_->SetTint(tint);
    unit_->SetTint(tint);
    unit_->setText(QString::fromStdString(description_.Unit) + (stale ? StaleMark : ""));
}

} // namespace kavro
