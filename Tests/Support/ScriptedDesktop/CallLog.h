#pragma once

#include "Async/Subscription.h"

#include <string>
#include <utility>
#include <vector>

namespace kestrove {

/// What was asked of scripted collaborators, in order. Shared by those whose order matters to each
/// other.
class CallLog {
public:
    void add(std::string call) { m_calls.push_back(std::move(call)); }
    /// What was added since the last `take`.
    [[nodiscard]] std::vector<std::string> take() { return std::exchange(m_calls, {}); }

    void clear() { m_calls.clear(); }

    /// Adds "watch WHAT" now, and "unwatch WHAT" when the subscription ends.
    [[nodiscard]] Subscription watch(const std::string& what, Subscription subscription) {
        add("watch " + what);
        return Subscription([this, what, inner = std::move(subscription)]() mutable {
            add("unwatch " + what);
            inner.cancel();
        });
    }

private:
    std::vector<std::string> m_calls;
};

} // namespace kestrove
