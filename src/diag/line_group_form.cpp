#include "diag/line_group_form.h"

#include "diag/lamp_form.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionButton>

namespace kavro {

namespace {

constexpr int LinesPerRow = 8;
constexpr int Border = 5; // of the button around its lamp

} // namespace

LineButton::LineButton(const QString& name, const QString& caption) : caption_(caption) {
    setObjectName(name);
    setCheckable(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    Describe();
}

void LineButton::Show(bool on) {
    setChecked(on);
    known_ = true;
    stale_ = false;
    Describe();
}

void LineButton::SetStale() {
    stale_ = true;
    Describe();
}

void LineButton::Describe() {
    const QString state = !known_ ? ": unknown" : isChecked() ? ": on" : ": off";
    setAccessibleName(caption_ + state + (known_ && stale_ ? ", stale" : ""));
    update();
}

QSize LineButton::sizeHint() const {
    const int side = LampSide(fontMetrics()) + 2 * Border;
    return {side, side};
}

void LineButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QPalette colors = palette();
    colors.setCurrentColorGroup(QPalette::Active); // a line that cannot be switched is read all the same
    if (isEnabled()) {
        QStyleOptionButton option;
        option.initFrom(this);
        option.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
        style()->drawControl(QStyle::CE_PushButtonBevel, &option, &painter, this);
        colors.setColor(QPalette::WindowText, colors.color(QPalette::ButtonText));
    }
    const QRect lamp = rect().adjusted(Border, Border, -Border, -Border);
    painter.setPen(colors.color(QPalette::WindowText));
    if (known_)
        DrawLamp(painter, lamp, isChecked() ? LampPicture::Bit1 : LampPicture::Bit0, colors, stale_);
    else
        painter.drawText(lamp, Qt::AlignCenter, "?");
}

LineGroup::LineGroup(LineGroupNames names, int lines) : QGroupBox(names.Title), names_(std::move(names)) {
    setObjectName(names_.Control + "Frame");
    grid_ = new QGridLayout(this);
    grid_->setColumnStretch(LinesPerRow, 1);
    for (int line = 0; line < lines; ++line) {
        const QString number = QString::number(line);
        auto* button = new LineButton(names_.Control + "_" + number, names_.Caption + " " + number);
        const int row = line / LinesPerRow * 2;
        grid_->addWidget(new QLabel(number), row, line % LinesPerRow, Qt::AlignCenter);
        grid_->addWidget(button, row + 1, line % LinesPerRow, Qt::AlignCenter);
        lines_.push_back(button);
    }
    SetSwitchable(false, {});
}

void LineGroup::OnChange(const std::function<void(int line, bool on)>& change) {
    for (std::size_t line = 0; line < lines_.size(); ++line) {
        LineButton* button = lines_[line];
        connect(button, &LineButton::clicked, this,
                [change, button, line] { change(static_cast<int>(line), !button->isChecked()); });
    }
    SetSwitchable(true, {});
}

void LineGroup::AddAllButtons(const std::function<void(bool on)>& change) {
    auto* row = new QHBoxLayout;
    for (const bool on : {true, false}) {
        auto* button = new QPushButton(on ? "All on" : "All off");
        Named(button, names_.Control + (on ? "AllOn" : "AllOff"), names_.Title + ": " + button->text());
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [change, on] { change(on); });
        row->addWidget(button);
        all_.push_back(button);
    }
    row->addStretch();
    grid_->addLayout(row, grid_->rowCount(), 0, 1, -1);
}

void LineGroup::SetSwitchable(bool switchable, const QString& whyNot) {
    for (QAbstractButton* button : lines_)
        SetUsable(*button, switchable, whyNot);
    for (QAbstractButton* button : all_)
        SetUsable(*button, switchable, whyNot);
}

void LineGroup::Show(unsigned states) {
    for (std::size_t line = 0; line < lines_.size(); ++line)
        lines_[line]->Show((states >> line & 1U) != 0);
}

void LineGroup::SetStale() {
    for (LineButton* line : lines_)
        line->SetStale();
}

} // namespace kavro
