#pragma once

#include "Async/Subscription.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace kestrove {

/// Tells any number of subscribers that something happened, in the order in which they subscribed.
///
/// A subscriber may, while it is being told, unsubscribe itself or another (which is then not told
/// any more), subscribe anew (told from the next time on), or destroy the signal (nobody else is
/// told).
///
/// Thread: main.
template <class... Arguments>
class Signal {
public:
    using Callback = std::function<void(const Arguments&...)>;

    Signal()
        : m_list(std::make_shared<List>()) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() { m_list->ended = true; }

    [[nodiscard]] Subscription subscribe(Callback callback) {
        auto entry = std::make_shared<Entry>(std::move(callback));
        m_list->entries.push_back(entry);
        // Weak, so that a subscription that outlives the signal does not keep the callback.
        return Subscription([weak = std::weak_ptr(entry), list = std::weak_ptr(m_list)] {
            const auto ended = weak.lock();
            if (!ended)
                return;
            ended->isActive = false;
            if (const auto alive = list.lock())
                std::erase(alive->entries, ended);
        });
    }

    void emit(const Arguments&... arguments) const {
        const auto list = m_list;
        const auto entries = list->entries;
        for (const auto& entry : entries) {
            if (list->ended)
                return;
            if (entry->isActive)
                entry->callback(arguments...);
        }
    }

    [[nodiscard]] bool hasSubscribers() const { return !m_list->entries.empty(); }

private:
    struct Entry {
        explicit Entry(Callback told)
            : callback(std::move(told)) {}
        Callback callback;
        bool isActive = true;
    };
    struct List {
        std::vector<std::shared_ptr<Entry>> entries;
        bool ended = false;
    };

    std::shared_ptr<List> m_list;
};

} // namespace kestrove
