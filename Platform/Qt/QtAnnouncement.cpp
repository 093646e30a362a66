#include "Platform/Qt/QtAnnouncement.h"

#include <QAccessible>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariantMap>

namespace kestrove {

void announceToScreenReader(const QString& message) {
    if (!QAccessible::isActive())
        return;
    // This Qt has no announcements of its own; the connection is the one that its bridge to
    // assistive technology has opened, and the object is the application.
    QDBusConnection bus(QStringLiteral("a11y"));
    if (!bus.isConnected())
        return;
    constexpr int assertive = 2;
    auto signal = QDBusMessage::createSignal(QStringLiteral("/org/a11y/atspi/accessible/root"),
                                             QStringLiteral("org.a11y.atspi.Event.Object"),
                                             QStringLiteral("Announcement"));
    signal << QString() << assertive << 0 << QVariant::fromValue(QDBusVariant(message))
           << QVariantMap();
    bus.send(signal);
}

} // namespace kestrove
