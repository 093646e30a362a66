#pragma once

#include "Async/Completion.h"
#include "Async/Task.h"

#include <string>
#include <utility>
#include <vector>

namespace kestrove {

/// Where the controller's awaits on its collaborators wait to be let through. Open by default: then
/// they return on the next turn of the loop.
class AwaitGate {
public:
    enum class Order { oldestFirst, newestFirst };

    explicit AwaitGate(MainLoop& loop)
        : m_loop(loop) {}

    /// What a scripted collaborator awaits before it answers.
    Task<void> pass(std::string what) {
        const Completion<bool> released(m_loop);
        m_waiting.emplace_back(std::move(what), released);
        if (m_isOpen)
            letThrough(Order::oldestFirst);
        co_await released;
    }

    void hold() { m_isOpen = false; }
    void open() {
        m_isOpen = true;
        while (!m_waiting.empty())
            letThrough(Order::oldestFirst);
    }

    [[nodiscard]] std::vector<std::string> waiting() const {
        std::vector<std::string> names;
        names.reserve(m_waiting.size());
        for (const auto& [name, released] : m_waiting)
            names.push_back(name);
        return names;
    }

    void letThrough(Order order = Order::oldestFirst) {
        const auto next = order == Order::oldestFirst ? m_waiting.begin() : m_waiting.end() - 1;
        const auto released = next->second;
        m_waiting.erase(next);
        released.complete(true);
    }

private:
    MainLoop& m_loop;
    bool m_isOpen = true;
    std::vector<std::pair<std::string, Completion<bool>>> m_waiting;
};

} // namespace kestrove
