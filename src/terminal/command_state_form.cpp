#include "terminal/command_state_form.h"

#include "link/runtime_failure.h"
#include "terminal/command_words.h"
#include "terminal/console_form.h"
#include "ui/named.h"
#include "ui/warning_sign.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int Lines = 2; // of either text, with an advice or the words of a long reply

// A text that wraps, with room for its lines, so that nothing moves while it changes.
QLabel* StateLabel(const char* name) {
    auto* label = Named(new QLabel, name, {});
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long text widens no window
    label->setMinimumHeight(label->fontMetrics().lineSpacing() * Lines);
    return label;
}

} // namespace

CommandState::CommandState(Session& session)
    : session_(session), sendState_(StateLabel("SendState")), replyState_(StateLabel("ReplyState")) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(4);
    layout->addWidget(sendState_);
    layout->addWidget(replyState_);
    session_.Line.Listeners.push_back(this);
}

CommandState::~CommandState() {
    LineListener* const listener = this;
    std::erase(session_.Line.Listeners, listener);
}

void CommandState::Passed(const LineTraffic& traffic) {
    if (traffic.Outcome != TrafficOutcome::Stray)
        ended_ = traffic.Outcome;
}

void CommandState::Follow(const QLineEdit& entry, const QCheckBox& checkSumEnable) {
    const auto show = [this, &entry, &checkSumEnable] {
        ShowSending(entry.text(), checkSumEnable.isChecked());
    };
    connect(&entry, &QLineEdit::textChanged, this, show);
    connect(&checkSumEnable, &QCheckBox::toggled, this, show);
}

void CommandState::ShowSending(const QString& typed, bool checksum) {
    std::string words;
    try {
        if (!typed.isEmpty())
            words = SendingWords(session_, WireText(typed), checksum ? 1 : 0);
    } catch (const RuntimeFailure& failure) { // it will be refused with the same words
        words = WarningSign + std::string(failure.what());
    }
    sendState_->setText(QString::fromStdString(words));
}

void CommandState::ShowOutcome(const std::string& command, int batchLine) {
    const CommandOutcome outcome = OutcomeOf(session_, command, ended_, batchLine);
    const QString words = QString::fromStdString(outcome.Words);
    replyState_->setText(outcome.Failed ? WarningSign + words : words);
    replyState_->setToolTip(words.toHtmlEscaped());
}

} // namespace kavro
