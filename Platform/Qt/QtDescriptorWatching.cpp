#include "Platform/Qt/QtDescriptorWatching.h"

#include <QSocketNotifier>

#include <memory>
#include <utility>

namespace kestrove {

namespace {

struct Watch {
    std::function<void()> ready;
    int runs = 0;
};

} // namespace

Subscription QtDescriptorWatching::watchReadable(int descriptor, std::function<void()> ready) {
    auto* const notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read);
    const auto watch = std::make_shared<Watch>(std::move(ready));
    // The copy keeps the callback alive while it runs, also when it unsubscribes itself.
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [watch] {
        const auto running = watch; // NOLINT(performance-unnecessary-copy-initialization)
        ++running->runs;
        running->ready();
        --running->runs;
    });
    return Subscription([notifier, watch = std::weak_ptr(watch)] {
        notifier->setEnabled(false);
        const auto current = watch.lock();
        if (!current || current->runs == 0) {
            delete notifier;
            return;
        }
        // Not under its own callback. Elsewhere not later either: what is left for a loop that has
        // ended is never done.
        notifier->disconnect();
        notifier->deleteLater();
    });
}

} // namespace kestrove
