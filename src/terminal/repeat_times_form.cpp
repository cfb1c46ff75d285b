#include "terminal/repeat_times_form.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "ui/key_filter.h"
#include "ui/named.h"
#include "ui/spin_buttons.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

namespace kavro {

namespace {

constexpr SpinRange TimesRange = {1, 32767}; // 0 can be typed, but not stepped to

} // namespace

QLineEdit* AddRepeatTimes(QFormLayout& layout, std::int16_t times) {
    auto* box = Named(new QLineEdit(QString::number(times)), "RepeatTimes", "Repeat times");
    FilterKeys(*box, FilterDigitKey);
    auto* row = new QHBoxLayout;
    row->addWidget(box, 1);
    AddSpinButtons(*row, *box, "TimesSpin", TimesRange);
    auto* label = new QLabel("Repeat &times:");
    label->setBuddy(box);
    layout.addRow(label, row);
    return box;
}

std::int16_t RepeatTimesIn(const QLineEdit& box) {
    const std::string text = box.text().toStdString();
    if (Trim(text).empty())
        throw RuntimeFailure("Repeat times is empty. Enter a number between 0 and 32767.");
    const std::int32_t times = WholeNumber32(text, "Repeat times");
    if (times < 0 || times > TimesRange.High)
        throw RuntimeFailure("Repeat times must be between 0 and 32767.");
    return static_cast<std::int16_t>(times);
}

} // namespace kavro
