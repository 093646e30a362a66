#pragma once

#include "Async/Signal.h"
#include "Async/TaskScope.h"

#include <functional>
#include <utility>

namespace kestrove {

/// Tells its subscribers from the main loop, once for however many times it was raised before.
/// Main thread.
class MergedNotice {
public:
    explicit MergedNotice(MainLoop& loop)
        : m_scope(loop) {}

    void raise() {
        if (std::exchange(m_isRaised, true))
            return;
        m_scope.post([this] {
            m_isRaised = false;
            m_told.emit();
        });
    }

    [[nodiscard]] Subscription subscribe(std::function<void()> callback) {
        return m_told.subscribe(std::move(callback));
    }

private:
    Signal<> m_told;
    bool m_isRaised = false;
    TaskScope m_scope;
};

} // namespace kestrove
