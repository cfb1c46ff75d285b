#include "diag/line_group_form.h"

#include "diag/lamp_form.h"
#include "map/tag_label_form.h"
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
constexpr int TagColumns = 9;
constexpr int GridRows = 3; // of a row of lines: numbers, lamps, tags
constexpr int Border = 5;   // of the button around its lamp

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
    const QString tag = ShownTag(tag_);
    setAccessibleName(caption_ + (tag.isEmpty() ? tag : ", " + tag) + state +
                      (known_ && stale_ ? ", stale" : ""));
    update();
}

void LineButton::SetSwitchable(bool switchable, const QString& whyNot) {
    SetUsable(*this, switchable, whyNot);
    whyNot_ = switchable ? QString() : whyNot;
    ShowTip();
}

void LineButton::ShowTag(const TagAndNote& tag) {
    tag_ = tag;
    Describe();
    ShowTip();
}

void LineButton::ShowTip() {
    const bool tagged = tag_ != TagAndNote{};
    setToolTip(tagged ? TagTip(tag_, whyNot_) : whyNot_);
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
        const int row = line / LinesPerRow * GridRows;
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
    const int lines = static_cast<int>(lines_.size());
    grid_->addLayout(row, (lines + LinesPerRow - 1) / LinesPerRow * GridRows, 0, 1, -1);
}

void LineGroup::SetSwitchable(bool switchable, const QString& whyNot) {
    for (LineButton* line : lines_)
        line->SetSwitchable(switchable, whyNot);
    for (QAbstractButton* button : all_)
        SetUsable(*button, switchable, whyNot);
}

void LineGroup::ShowTags(const std::vector<TagAndNote>& tags) {
    for (int line = static_cast<int>(tags_.size()); line < static_cast<int>(lines_.size()); ++line) {
        tags_.push_back(new TagLabel(names_.Control + "Tag_" + QString::number(line), TagColumns));
        grid_->addWidget(tags_.back(), line / LinesPerRow * GridRows + 2, line % LinesPerRow,
                         Qt::AlignCenter);
    }
    for (std::size_t line = 0; line < tags.size(); ++line) {
        tags_[line]->Show(tags[line]);
        lines_[line]->ShowTag(tags[line]);
    }
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
