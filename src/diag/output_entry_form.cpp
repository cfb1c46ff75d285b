#include "diag/output_entry_form.h"

#include "link/text.h"
#include "ui/named.h"
#include "ui/note.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace kavro {

namespace {

constexpr int Percents[] = {0, 25, 50, 75, 100};
constexpr int Margin = 8; // on either side of a text, so that four outputs have room beside each other
constexpr const char* WidestEntry = "-00.0000";

// "-10", "4".
QString Whole(double value) {
    return QString::fromStdString(FormatNumber(value, 1, 0));
}

QString RangeText(const OutputBounds& bounds) {
    return Whole(bounds.Low) + " to " + Whole(bounds.High) + " " + QString::fromStdString(bounds.Unit);
}

} // namespace

OutputEntry::OutputEntry(Description description) : description_(std::move(description)) {
    const QString& nameEnd = description_.NameEnd;
    entry_ = Named(new QLineEdit, "DaEntry" + nameEnd, description_.Title + " value");
    entry_->setToolTip(RangeText(description_.Bounds) + "; Enter drives the output.");
    entry_->setFixedWidth(entry_->fontMetrics().horizontalAdvance(WidestEntry) + 2 * Margin);
    auto* caption = Named(new QLabel("Set to:"), "EntryCaption" + nameEnd, {});
    caption->setBuddy(entry_);
    note_ = new Note("EntryNote" + nameEnd, *this);
    auto* row = new QHBoxLayout;
    row->addWidget(caption);
    row->addWidget(entry_);
    row->addWidget(
        Named(new QLabel(QString::fromStdString(description_.Bounds.Unit)), "EntryUnit" + nameEnd, {}));
    row->addStretch(1);
    AddPercents(*row);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(row);
    layout->addWidget(note_);
    connect(entry_, &QLineEdit::returnPressed, this, [this] { Enter(); });
    connect(entry_, &QLineEdit::textEdited, this, [this] { note_->Tell({}); });
}

void OutputEntry::AddPercents(QLayout& row) {
    const OutputBounds& bounds = description_.Bounds;
    const QString ends = QString("0 % is %1, 100 % is %2 %3")
                             .arg(Whole(bounds.Low), Whole(bounds.High), QString::fromStdString(bounds.Unit));
    for (const int percent : Percents) {
        const double value = bounds.Low + (bounds.High - bounds.Low) * percent / 100;
        const QString caption = QString("%1 %").arg(percent);
        auto* button =
            Named(new QPushButton(caption), QString("Percent%1%2").arg(percent).arg(description_.NameEnd),
                  description_.Title + " " + caption);
        button->setToolTip(QString("Sets %1 %2. %3 of the range.")
                               .arg(ShownOutput(static_cast<float>(value), description_.Separator).c_str(),
                                    bounds.Unit.c_str(), ends));
        button->setAutoDefault(false); // Enter in the field must not press it
        button->setFixedWidth(button->fontMetrics().horizontalAdvance("100 %") + 2 * Margin);
        connect(button, &QPushButton::clicked, this, [this, value] {
            note_->Tell({});
            description_.Set(value);
        });
        row.addWidget(button);
    }
}

void OutputEntry::Enter() {
    std::string text = Trim(entry_->text().toStdString());
    NormalizeDecimalPoint(text, description_.Separator);
    const auto value = ParseOutput(text, description_.Bounds);
    note_->Tell(value ? QString()
                      : QString("Give %1, a number with the decimal separator \"%2\". Nothing was sent.")
                            .arg(RangeText(description_.Bounds), description_.Separator.c_str()));
    entry_->selectAll();
    if (value)
        description_.Set(*value);
}

} // namespace kavro
