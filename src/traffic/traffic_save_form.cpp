#include "traffic/traffic_save_form.h"

#include "ui/named.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>

#include <chrono>

namespace kavro {

namespace {

constexpr int SliceMs = 10;
constexpr int WritingLookMs = 20;
constexpr int ProgressSteps = 1000;

} // namespace

TrafficSaveBar::TrafficSaveBar(Messages& messages) : messages_(messages) {
    Named(this, "SaveBar", {});
    activity_ = Named(new QLabel, "SaveActivity", {});
    progress_ = Named(new QProgressBar, "SaveProgress", "How far the file is");
    progress_->setRange(0, ProgressSteps);
    cancel_ = Named(new QPushButton("Cancel"), "CancelSaveBtn", "Cancel saving");
    connect(cancel_, &QPushButton::clicked, this, [this] { End("Nothing was saved."); });
    connect(&turns_, &QTimer::timeout, this, [this] { Step(); });
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(activity_);
    layout->addWidget(progress_, 1);
    layout->addWidget(cancel_);
    hide();
}

TrafficSaveBar::~TrafficSaveBar() = default;

void TrafficSaveBar::Begin(const QString& path, std::unique_ptr<TrafficExport> rows,
                           const FileReplacer& replaceFile) {
    rows_ = std::move(rows);
    path_ = path.toStdString();
    replaceFile_ = replaceFile;
    activity_->setText("Saving...");
    cancel_->setEnabled(true);
    show();
    turns_.start(0);
}

void TrafficSaveBar::Step() {
    if (!writing_.valid()) {
        const bool done = rows_->Advance(SliceMs);
        progress_->setValue(static_cast<int>(rows_->Share() * ProgressSteps));
        if (done)
            Write();
    } else if (writing_.wait_for(std::chrono::seconds(0)) == std::future_status::ready) {
        const QString result = QString("%1 rows saved.").arg(QLocale().toString(rows_->Written()));
        const bool saved = Guard(messages_, [this] { writing_.get(); });
        End(saved ? result : QString());
    }
}

// A disk may take seconds for a hundred megabytes.
void TrafficSaveBar::Write() {
    cancel_->setEnabled(false);
    activity_->setText("Writing...");
    turns_.start(WritingLookMs);
    writing_ = std::async(std::launch::async,
                          [this, content = std::move(rows_->Content)] { replaceFile_(path_, content); });
}

void TrafficSaveBar::End(const QString& result) {
    turns_.stop();
    rows_.reset();
    result_ = result;
    hide();
}

} // namespace kavro
