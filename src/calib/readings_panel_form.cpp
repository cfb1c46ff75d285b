#include "calib/readings_panel_form.h"

#include "calib/wrapped_label_form.h"
#include "ui/named.h"
#include "ui/warning_sign.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int Lines = 2; // of the longest text
constexpr double ReadingScale = 1.4;
constexpr const char* NoError = "\u2013";
constexpr const char* StableSign = "\u2713 ";
constexpr const char* UnstableSign = "\u2026 ";

// A sign and a word, so that neither colour nor sharp eyes are needed.
QString StateText(const ReadingView& view) {
    const char* sign = view.Faulty ? WarningSign : view.Stable ? StableSign : UnstableSign;
    return view.State.empty() ? QString() : sign + QString::fromStdString(view.State);
}

} // namespace

ReadingsPanel::ReadingsPanel(int columns, QWidget& form) : QWidget(&form) {
    reading_ = Named(new QLabel(this), "PresentReading", {});
    QFont font = reading_->font();
    font.setPointSizeF(font.pointSizeF() * ReadingScale);
    font.setBold(true);
    reading_->setFont(font);
    state_ = Named(new QLabel(this), "ReadingState", {});
    error_ = Named(new QLabel(this), "ReadingError", {});
    for (QLabel* label : {reading_, state_, error_})
        label->setTextFormat(Qt::PlainText);
    replaces_ = WrappedLabel("Replaces", columns, Lines, *this);

    auto* present = new QHBoxLayout;
    present->addWidget(reading_);
    present->addWidget(state_);
    present->addStretch(1);
    rows_ = new QFormLayout;
    rows_->addRow("Present reading:", present);
    rows_->addRow("Error:", error_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(rows_);
    layout->addWidget(replaces_);
}

void ReadingsPanel::Show(const ReadingView& view) {
    reading_->setText(QString::fromStdString(view.Reading));
    state_->setText(StateText(view));
    error_->setText(view.Error.empty() ? NoError : QString::fromStdString(view.Error));
    replaces_->setText(QString::fromStdString(view.Replaces));
}

} // namespace kavro
