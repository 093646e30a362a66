#include "App/OwnWindows.h"

#include <QCoreApplication>
#include <QPlatformSurfaceEvent>

#include <utility>

namespace kestrove {

namespace {

/// Ours lies there in a window of the tray's, with other programs' icons, which is not ours to
/// leave out.
bool isIconInTray(const QWindow& window) {
    return window.objectName() == QLatin1String("QSystemTrayIconSysWindow");
}

} // namespace

OwnWindows::OwnWindows(Callback created, Callback goes)
    : m_created(std::move(created))
    , m_goes(std::move(goes)) {
    qApp->installEventFilter(this);
}

bool OwnWindows::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::PlatformSurface) {
        const auto* const window = qobject_cast<QWindow*>(watched);
        // One inside another window goes wherever that one goes.
        if (window != nullptr && window->parent() == nullptr && !isIconInTray(*window)) {
            const auto type = static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType();
            const auto& tell = type == QPlatformSurfaceEvent::SurfaceCreated ? m_created : m_goes;
            tell(window->winId());
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kestrove
