#include "app/color_scheme.h"

#include "app/dark_outline_style.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>

#ifdef KAVRO_HAS_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#endif

namespace kavro {

#ifdef KAVRO_HAS_DBUS
namespace {

constexpr uint PrefersDark = 1;
constexpr const char* AppliedProperty = "kavroDarkPalette";

QPalette DarkPalette() {
    const QColor window(45, 45, 48);
    const QColor base(30, 30, 32);
    const QColor text(230, 230, 230);
    const QColor highlight(47, 127, 209);
    QPalette palette(window, window); // buttons and windows; the texts follow from their darkness
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, QColor(150, 150, 150));
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, highlight.lighter());
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
    return palette;
}

void Apply(QApplication& application, bool dark) {
    const bool applied = application.property(AppliedProperty).toBool();
    const bool themeIsDark = !applied && application.palette().color(QPalette::Window).lightness() < 128;
    if (dark == applied || (dark && themeIsDark))
        return;
    application.setProperty(AppliedProperty, dark);
    if (dark)
        QApplication::setStyle(new DarkOutlineStyle); // of Fusion, the one style that takes any palette
    QApplication::setPalette(dark ? DarkPalette() : QApplication::style()->standardPalette());
}

void AskPortal(QApplication& application) {
    QDBusMessage question =
        QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                       "org.freedesktop.portal.Settings", "Read");
    question << QString("org.freedesktop.appearance") << QString("color-scheme");
    auto* answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), &application);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &application,
                     [&application](QDBusPendingCallWatcher* call) {
                         const QDBusPendingReply<QDBusVariant> reply = *call;
                         call->deleteLater();
                         if (reply.isError())
                             return;
                         // The portal wraps the value twice.
                         const QVariant inner = reply.value().variant();
                         const QVariant value =
                             inner.canConvert<QDBusVariant>() ? inner.value<QDBusVariant>().variant() : inner;
                         Apply(application, value.toUInt() == PrefersDark);
                     });
}

void FollowPortal(QApplication& application) {
    if (!QDBusConnection::sessionBus().isConnected())
        return;
    AskPortal(application);
    QObject::connect(&application, &QApplication::applicationStateChanged, &application,
                     [&application](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive)
                             AskPortal(application);
                     });
}

} // namespace
#else
namespace {

void FollowPortal(QApplication&) {}

} // namespace
#endif

void FollowColorScheme(QApplication& application) {
    if (QApplication::style()->name().compare("fusion", Qt::CaseInsensitive) == 0)
        QApplication::setStyle(new DarkOutlineStyle);
    FollowPortal(application);
}

} // namespace kavro
