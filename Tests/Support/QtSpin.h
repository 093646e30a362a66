#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <functional>

namespace kestrove {

/// Runs Qt's event loop until `condition` holds; false when it has not come to hold after ten
/// seconds.
inline bool spinUntil(const std::function<bool()>& condition) {
    constexpr int patience = 10'000;
    QElapsedTimer waited;
    waited.start();
    while (!condition()) {
        const auto left = patience - waited.elapsed();
        if (left <= 0)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents,
                                        static_cast<int>(left));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

} // namespace kestrove
