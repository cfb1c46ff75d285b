#include "config/option_pairs_form.h"

#include "ui/named.h"
#include "ui/usable.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>

namespace kavro {

OptionPairs::OptionPairs(const QString& title, const Column& first, const Column& second,
                         const QStringList& rows)
    : QGroupBox(title) {
    auto* grid = new QGridLayout(this);
    grid->addWidget(new QLabel(first.Caption), 0, 1, Qt::AlignHCenter);
    grid->addWidget(new QLabel(second.Caption), 0, 2, Qt::AlignHCenter);
    for (int row = 0; row < rows.size(); ++row) {
        auto* exclusive = new QButtonGroup(this);
        const auto option = [&](const Column& column, int place) {
            auto* button = Named(new QRadioButton, QString("%1_%2").arg(column.Name).arg(row),
                                 column.Caption + (" " + rows[row]));
            exclusive->addButton(button);
            grid->addWidget(button, row + 1, place, Qt::AlignHCenter);
            return button;
        };
        auto* label = new QLabel(rows[row]);
        grid->addWidget(label, row + 1, 0);
        pairs_.push_back({label, option(first, 1), option(second, 2)});
    }
    grid->setRowStretch(static_cast<int>(rows.size()) + 1, 1);
}

void OptionPairs::Choose(int row, bool first) {
    (first ? At(row).First : At(row).Second)->setChecked(true);
}

bool OptionPairs::IsFirst(int row) const {
    return At(row).First->isChecked();
}

void OptionPairs::Disable(int row, const QString& whyNot) {
    const Pair& pair = At(row);
    for (QWidget* control :
         {pair.Label, static_cast<QWidget*>(pair.First), static_cast<QWidget*>(pair.Second)})
        SetUsable(*control, false, whyNot);
}

} // namespace kavro
