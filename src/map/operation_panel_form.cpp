#include "map/operation_panel_form.h"

#include "ui/named.h"

#include <QEvent>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QToolButton>

namespace kavro {

namespace {

constexpr int IconPixels = 32;

QLabel* MakePrompt(const OperationButton& operation) {
    auto* prompt = Named(new QLabel(operation.Text), operation.Prompt, {});
    prompt->setAlignment(Qt::AlignCenter);
    QSizePolicy keepsPlace = prompt->sizePolicy();
    keepsPlace.setRetainSizeWhenHidden(true); // so that nothing moves when a prompt shows
    prompt->setSizePolicy(keepsPlace);
    prompt->hide();
    return prompt;
}

} // namespace

OperationPanel::OperationPanel(std::vector<OperationButton> operations) {
    setMouseTracking(true);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    for (OperationButton& operation : operations) {
        auto* button = Named(new QToolButton, operation.Button, operation.Text);
        button->setIcon(QIcon(operation.Icon));
        button->setIconSize(QSize(IconPixels, IconPixels));
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        button->installEventFilter(this);
        connect(button, &QToolButton::clicked, this, std::move(operation.Run));
        auto* prompt = MakePrompt(operation);
        const int column = static_cast<int>(buttons_.size());
        grid->addWidget(button, 0, column, Qt::AlignCenter);
        grid->addWidget(prompt, 1, column);
        grid->setColumnMinimumWidth(column, IconPixels * 3);
        buttons_.push_back(button);
        prompts_.push_back(prompt);
    }
    grid->setColumnStretch(static_cast<int>(buttons_.size()), 1);
}

void OperationPanel::HidePrompts() {
    ShowPrompt(nullptr);
}

bool OperationPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Enter || event->type() == QEvent::FocusIn)
        ShowPrompt(watched);
    else if (event->type() == QEvent::FocusOut || event->type() == QEvent::Leave)
        HidePrompts();
    return QWidget::eventFilter(watched, event);
}

void OperationPanel::mouseMoveEvent(QMouseEvent* event) {
    HidePrompts();
    QWidget::mouseMoveEvent(event);
}

void OperationPanel::ShowPrompt(const QObject* button) {
    for (std::size_t i = 0; i < buttons_.size(); ++i)
        prompts_[i]->setVisible(buttons_[i] == button);
}

} // namespace kavro
