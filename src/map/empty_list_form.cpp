#include "map/empty_list_form.h"

#include "ui/named.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr double HeadingScale = 1.3;
constexpr int LeastColumns = 40; // of a step's text

QLabel* PlainLabel(const QString& name, const QString& text = {}) {
    auto* label = Named(new QLabel(text), name, {});
    label->setTextFormat(Qt::PlainText);      // a path may look like markup
    label->setForegroundRole(QPalette::Text); // it stands on the list
    return label;
}

} // namespace

EmptyListForm::EmptyListForm(EmptyListActions actions) {
    setObjectName("EmptyListForm");
    auto* heading = PlainLabel("EmptyHeading", "No modules are listed yet");
    QFont large = heading->font();
    large.setPointSizeF(large.pointSizeF() * HeadingScale);
    large.setBold(true);
    heading->setFont(large);

    steps_ = new QGridLayout;
    steps_->setColumnStretch(2, 1);
    steps_->setHorizontalSpacing(steps_->horizontalSpacing() * 2);
    adapter_ = AddStep("1.", "ChooseAdapterBtn", "C&hoose the adapter...", std::move(actions.ChooseAdapter));
    search_ = AddStep("2.", "SearchNowBtn", "&Search...", std::move(actions.Search));
    simulated_ =
        AddStep("or", "TrySimulatedBtn", "&Try the simulated line", std::move(actions.TrySimulatedLine));
    simulated_.Text->setText("A line of modules to try everything on, without any hardware.");
    open_ = AddStep("or", "OpenMapBtn", "Open a &map...", std::move(actions.OpenMap));
    open_.Text->setText("Reads the modules of a saved list again, in seconds.");

    auto* rows = new QVBoxLayout(this);
    const int margin = rows->contentsMargins().left() * 3;
    rows->setContentsMargins(margin, margin, margin, margin);
    rows->setSpacing(margin / 2);
    rows->addWidget(heading);
    rows->addLayout(steps_);
    rows->addStretch(1);
}

EmptyListForm::Step EmptyListForm::AddStep(const char* lead, const char* name, const char* caption,
                                           std::function<void()> run) {
    const Step step = {PlainLabel(QString(name) + "Lead", lead),
                       Named(new QPushButton(caption), name, QString(caption).remove('&').remove("...")),
                       PlainLabel(QString(name) + "Text")};
    step.Text->setMinimumWidth(fontMetrics().averageCharWidth() * LeastColumns);
    connect(step.Button, &QPushButton::clicked, this, std::move(run));
    const int row = steps_->rowCount();
    steps_->addWidget(step.Lead, row, 0);
    steps_->addWidget(step.Button, row, 1);
    steps_->addWidget(step.Text, row, 2);
    return step;
}

void EmptyListForm::Tell(const QString& port, bool simulated, const QString& searchTime) {
    const auto tell = [](const Step& step, const QString& text) {
        step.Text->setText(text);
        step.Text->setToolTip(text); // where the window is too narrow for it
        step.Button->setAccessibleDescription(text);
    };
    tell(adapter_, "Now it is " + port + ".");
    tell(search_, searchTime.isEmpty() ? "Asks every address for its module."
                                       : "Asks every address for its module: " + searchTime + ".");
    for (QWidget* part : {static_cast<QWidget*>(simulated_.Lead), static_cast<QWidget*>(simulated_.Button),
                          static_cast<QWidget*>(simulated_.Text)})
        part->setVisible(!simulated);
}

// Enter presses the button with the focus, unless it is held down: then it was meant for a dialog before.
void EmptyListForm::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (enter && !event->isAutoRepeat() && button && button->hasFocus())
        button->click();
    else
        QWidget::keyPressEvent(event);
}

} // namespace kavro
