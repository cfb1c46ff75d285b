#include "map/main_status_form.h"

#include "ui/named.h"

#include <QFileInfo>
#include <QLabel>
#include <QStatusBar>
#include <QTimer>

namespace kavro {

namespace {

constexpr int PortWatchMs = 1000;
constexpr const char* EchoText =
    "The adapter hands back every character sent. The echo is taken away from every reply.";
constexpr const char* ReopensText = "The next operation opens the port by itself when its device is there.";
constexpr int StatusMargin = 3;
constexpr int PortColumns = 12;
constexpr int LineFileColumns = 30; // at most

QLabel* StatusLabel(const char* name) {
    auto* label = Named(new QLabel, name, {});
    label->setTextFormat(Qt::PlainText); // a path or a model may look like markup
    label->setMargin(StatusMargin);
    return label;
}

} // namespace

MainStatus::MainStatus(QStatusBar& bar, Session& session, const PortDevices& devices)
    : session_(session), devices_(devices) {
    activity_ = StatusLabel("ActivityStatus");
    activity_->setWordWrap(true); // what a search tells may be long
    port_ = StatusLabel("PortStatus");
    port_->setMinimumWidth(bar.fontMetrics().averageCharWidth() * PortColumns); // a long path gives way
    count_ = StatusLabel("CountStatus");
    bar.addWidget(activity_, 1);
    bar.addPermanentWidget(count_);
    lineFile_ = StatusLabel("LineFileStatus");
    bar.addPermanentWidget(lineFile_);
    lineFile_->hide();
    bar.addPermanentWidget(port_);
    auto* watch = new QTimer(&bar); // a port is lost, and opened again, at any time and below any dialog
    QObject::connect(watch, &QTimer::timeout, &bar, [this] { ShowPort(); });
    watch->start(PortWatchMs);
}

void MainStatus::ShowActivity(const QString& text) {
    activity_->setText(text);
    activity_->setToolTip(text); // where the bar is too short for it
}

QString MainStatus::Activity() const {
    return activity_->text();
}

void MainStatus::ShowCount(int modules) {
    count_->setText(QString("Modules: %1").arg(modules));
}

void MainStatus::ShowLineFile() {
    const QString path = QString::fromStdString(session_.Tags.Path);
    const QFontMetrics metrics = lineFile_->fontMetrics();
    lineFile_->setText("Line: " + metrics.elidedText(QFileInfo(path).fileName(), Qt::ElideMiddle,
                                                     metrics.averageCharWidth() * LineFileColumns));
    lineFile_->setToolTip(path);
    lineFile_->setHidden(path.isEmpty());
}

QString MainStatus::PortText() const {
    const int port = session_.Line.CurrentPort;
    QString text = QString("COM%1").arg(port);
    if (port >= 1 && port <= PortTotal)
        text += ": " + QString::fromStdString(ShownDevice(devices_.Device(port)));
    return text;
}

void MainStatus::ShowPort() {
    Line& line = session_.Line;
    const int port = line.CurrentPort;
    const bool closed = port >= 1 && port <= PortTotal && !line.CommPort(port).PortOpen();
    port_->setText(PortText() + (closed ? " (closed)" : line.Echo ? ", echo" : ""));
    // Where the bar is too short for the device, the whole text is here.
    port_->setToolTip(closed ? ReopensText : line.Echo ? EchoText : port_->text());
}

} // namespace kavro
