#include "diag/reading_rows_form.h"

#include "map/tag_label_form.h"
#include "ui/fixed_font.h"
#include "ui/named.h"
#include "ui/tinted_label.h"

#include <QGridLayout>
#include <QLabel>

namespace kavro {

namespace {

constexpr QRgb Red = 0xFF0000;
constexpr QRgb Grey = 0x808080;
constexpr int TagPlace = 4;
constexpr int TagColumns = 24;
constexpr int RowSpacing = 6;
constexpr const char* WidestReading = "-000000.0000";
constexpr const char* WidestUnit = "ohms (stale)";
constexpr const char* OpenText = "open";

} // namespace

ReadingRows::ReadingRows(const QString& title, const QStringList& captions) : QGroupBox(title) {
    auto* grid = new QGridLayout(this);
    grid->setVerticalSpacing(RowSpacing);
    grid->setColumnStretch(3, 1);
    const QFont font = FixedFont();
    for (const QString& caption : captions) {
        const int row = static_cast<int>(rows_.size());
        const QString number = "_" + QString::number(row);
        auto* label = Named(new TintedLabel(caption), "Label3" + number, {});
        auto* reading = Named(new TintedLabel("0000.0000"), "Reading" + number, {});
        auto* unit = Named(new TintedLabel, "FormatText" + number, {});
        reading->setFont(font);
        reading->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        // Of a fixed size, so that a new reading does not lay the whole panel out anew.
        const QFontMetrics metrics(font);
        reading->setFixedSize(metrics.horizontalAdvance(WidestReading), metrics.height());
        unit->setMinimumWidth(unit->fontMetrics().horizontalAdvance(WidestUnit));
        grid->addWidget(label, row, 0);
        grid->addWidget(reading, row, 1);
        grid->addWidget(unit, row, 2);
        auto* open = Named(new QLabel, "OpenMark" + number, {});
        open->setMinimumWidth(open->fontMetrics().horizontalAdvance(OpenText));
        grid->addWidget(open, row, 3);
        rows_.push_back({label, reading, unit, open, false});
    }
}

void ReadingRows::BeginReading(int row) {
    At(row).Reading->SetTint(QColor(Red));
}

void ReadingRows::ShowReading(int row, const std::string& text, const std::string& unit) {
    At(row).Live = true;
    At(row).Reading->setText(QString::fromStdString(text));
    At(row).Unit->SetTint({});
    At(row).Unit->setText(QString::fromStdString(unit));
}

void ReadingRows::ShowOpen(int row, bool open) {
    At(row).Open->setText(open ? OpenText : "");
}

void ReadingRows::ShowUnread(int row) {
    At(row).Reading->SetTint(QColor(Grey));
    At(row).Reading->setText("-");
}

void ReadingRows::ShowDisabled(int row) {
    At(row).Reading->SetTint(QColor(Grey));
    At(row).Reading->setText("Disabled");
    At(row).Unit->clear();
}

void ReadingRows::ShowMissing(int row) {
    At(row).Caption->SetTint(QColor(Grey));
    At(row).Reading->clear();
    At(row).Unit->clear();
}

void ReadingRows::ShowTags(const std::vector<TagAndNote>& tags) {
    auto* grid = static_cast<QGridLayout*>(layout());
    grid->setColumnStretch(TagPlace - 1, 0);
    grid->setColumnStretch(TagPlace, 1);
    for (int row = 0; row < static_cast<int>(tags.size()); ++row) {
        TagLabel*& label = At(row).Tag;
        if (!label) {
            label = new TagLabel("Tag_" + QString::number(row), TagColumns);
            grid->addWidget(label, row, TagPlace);
        }
        label->Show(tags[static_cast<std::size_t>(row)]);
    }
}

void ReadingRows::ShowStale() {
    for (Row& row : rows_) {
        if (!row.Live)
            continue;
        row.Live = false; // until it is read again
        row.Reading->SetTint(QColor(StaleTint));
        row.Unit->SetTint(QColor(StaleTint));
        row.Unit->setText(row.Unit->text().trimmed() + StaleMark);
    }
}

} // namespace kavro
