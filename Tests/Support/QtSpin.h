#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>

namespace kestrove {

/// Runs Qt's event loop until `condition` holds; false when it has not come to hold after ten
/// seconds.
inline bool spinUntil(const std::function<bool()>& condition) {
    constexpr auto patience = std::chrono::seconds(10);
    QTimer timeOut;
    timeOut.setSingleShot(true);
    timeOut.start(patience);
    while (!condition()) {
        if (!timeOut.isActive())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

} // namespace kestrove
