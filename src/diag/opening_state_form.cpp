#include "diag/opening_state_form.h"

#include "ui/make_room.h"
#include "ui/named.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace kavro {

namespace {

QLabel* Text(const char* name) {
    auto* label = Named(new QLabel, name, {});
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

void Show(QLabel& label, const QString& text) {
    if (label.text() == text)
        return;
    label.setText(text);
    QTimer::singleShot(0, &label, [&label] { MakeRoom(*label.window()); }); // when its layout knows of it
}

} // namespace

OpeningState::OpeningState(std::function<void()> putBack) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(opening_ = Text("OpeningState"));
    if (!putBack)
        return;
    putBack_ = Named(new QPushButton("&Put Back"), "PutBackBtn", "Put Back");
    putBack_->setAutoDefault(false);
    connect(putBack_, &QPushButton::clicked, this, [putBack = std::move(putBack)] { putBack(); });
    auto* row = new QHBoxLayout;
    row->addWidget(putBackState_ = Text("PutBackState"), 1);
    row->addWidget(putBack_);
    layout->addLayout(row);
    TellPutBack(false, "What stood before has not been read yet.");
}

void OpeningState::Tell(const QString& text) {
    Show(*opening_, text);
}

void OpeningState::TellPutBack(bool possible, const QString& text) {
    if (!putBack_ || (possible == possible_ && text == putBackState_->text()))
        return;
    possible_ = possible;
    putBack_->setAccessibleDescription(text);
    Show(*putBackState_, text);
    ShowStale(stale_);
}

void OpeningState::ShowStale(bool stale) {
    stale_ = stale;
    if (putBack_)
        putBack_->setEnabled(possible_ && !stale);
}

} // namespace kavro
