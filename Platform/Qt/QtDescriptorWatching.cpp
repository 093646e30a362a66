#include "Platform/Qt/QtDescriptorWatching.h"

#include <QSocketNotifier>

#include <memory>
#include <utility>

namespace kestrove {

Subscription QtDescriptorWatching::watchReadable(int descriptor, std::function<void()> ready) {
    auto* const notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read);
    const auto callback = std::make_shared<std::function<void()>>(std::move(ready));
    // The copy keeps the callback alive while it runs, also when it unsubscribes itself.
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [callback] {
        const auto running = callback;
        (*running)();
    });
    return Subscription([notifier] {
        notifier->setEnabled(false);
        notifier->disconnect();
        // Not at once: this may be the notifier's own callback.
        notifier->deleteLater();
    });
}

} // namespace kestrove
