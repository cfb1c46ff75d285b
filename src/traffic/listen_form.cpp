#include "traffic/listen_form.h"

#include "link/baud.h"
#include "map/module_access.h"
#include "ui/center_form.h"
#include "ui/fixed_font.h"
#include "ui/named.h"
#include "ui/note.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>
#include <utility>

namespace kavro {

namespace {

constexpr int TurnMs = 20;          // waited for characters in each turn of the event loop
constexpr int TurnsUntilShown = 12; // about four times a second
constexpr int SummaryRows = 10;
constexpr int SummaryColumns = 76;

} // namespace

ListenForm::ListenForm(Session& session, Messages& messages, bool rateIsFixed, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages) {
    setObjectName("ListenForm");
    setWindowTitle("Listen Only");
    Build(rateIsFixed);
    session_.Line.Listeners.push_back(&summary_);
    turns_.setSingleShot(true); // a message about a turn that failed lets no further one begin
    connect(&turns_, &QTimer::timeout, this, [this] { Listen(); });
    CenterForm(*this);
    QTimer::singleShot(0, this, [this] { Begin(); }); // a port that fails is told over the window
}

ListenForm::~ListenForm() {
    std::erase(session_.Line.Listeners, &summary_);
}

void ListenForm::Build(bool rateIsFixed) {
    rate_ = Named(new QComboBox, "Rate", "Baud rate");
    rate_->addItem("Found by listening");
    for (const char* name : BaudNames)
        rate_->addItem(name);
    if (rateIsFixed) {
        rate_->setCurrentText(QString::number(session_.Line.BaudInUse()));
        rate_->setEnabled(false);
    }
    connect(rate_, &QComboBox::currentIndexChanged, this, [this] {
        End();
        Begin();
    });
    state_ = Named(new QLabel, "State", {});
    modules_ = Named(new QPlainTextEdit, "Modules", "What passed, by module");
    modules_->setReadOnly(true);
    modules_->setPlaceholderText(
        "What passes is counted here by module; the traffic window shows each exchange.");
    modules_->setFont(FixedFont());
    const QFontMetrics metrics(modules_->font());
    modules_->setMinimumSize(metrics.horizontalAdvance(' ') * SummaryColumns,
                             metrics.lineSpacing() * SummaryRows);
    auto* close = Named(new QPushButton("&Close"), "CloseBtn", "Close");
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    auto* choices = new QFormLayout;
    choices->addRow("COM port:",
                    Named(new QLabel(QString("COM%1").arg(session_.Line.CurrentPort)), "ComPort", {}));
    choices->addRow("&Baud rate:", rate_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(choices);
    layout->addWidget(state_);
    layout->addWidget(modules_, 1);
    layout->addWidget(close, 0, Qt::AlignRight);
}

void ListenForm::Begin() {
    Guard(messages_, [this] {
        OpenPort(session_.Line);
        const int chosen = rate_->currentIndex();
        const auto code = chosen > 0 ? std::optional(static_cast<std::int16_t>(chosen - 1)) : std::nullopt;
        listening_ = std::make_unique<Listening>(session_.Line, code, [this](std::int32_t) { ShowState(); });
        turns_.start();
    });
    ShowState();
}

void ListenForm::End() {
    turns_.stop();
    if (const auto ended = std::exchange(listening_, nullptr))
        ended->End();
}

void ListenForm::Listen() {
    if (Guard(messages_, [this] { listening_->Listen(TurnMs); }))
        turns_.start();
    else
        End();
    if (++sinceShown_ < TurnsUntilShown && listening_)
        return;
    sinceShown_ = 0;
    ShowState();
}

void ListenForm::ShowState() {
    const QString rate = listening_ ? QString("%1 baud").arg(listening_->Baud()) : QString();
    state_->setText(!listening_ ? QString("The port has failed. Choose a rate to try again.")
                    : listening_->RateKnown()
                        ? "Listening at " + rate + ". Nothing is sent."
                        : "Looking for the rate: trying " + rate + ". Nothing is sent.");
    QStringList lines;
    for (const std::string& line : summary_.Lines())
        lines << QString::fromStdString(line);
    if (const QString text = lines.join('\n'); text != modules_->toPlainText()) {
        const int place = modules_->verticalScrollBar()->value();
        modules_->setPlainText(text);
        modules_->verticalScrollBar()->setValue(place);
    }
}

void ListenForm::reject() {
    End();
    QDialog::reject();
}

} // namespace kavro
