#include "Tests/X11/Sources/SteppedMainLoop.h"

#include "Tests/Support/Processes/Waiting.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace kestrove::test {

bool SteppedMainLoop::spinUntil(const std::function<bool()>& condition) {
    return spin(condition, Seconds(0));
}

bool SteppedMainLoop::runUntil(const std::function<bool()>& condition) {
    // Shorter than every delay that matters.
    return spin(condition, Seconds(0.01));
}

bool SteppedMainLoop::spin(const std::function<bool()>& condition, Seconds step) {
    // What a condition looks at may be another program's work, which does not wake this one.
    constexpr std::chrono::milliseconds glance(2);
    QTimer wake;
    wake.start(glance);
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (step > Seconds(0))
            m_clock.advance(step);
    }
    return true;
}

} // namespace kestrove::test
