#pragma once

#include <functional>
#include <utility>

namespace kestrove {

/// The right to be told of something, owned. Destroying it unsubscribes, also from inside a
/// callback; after that the callback never runs again. It may outlive what it subscribed to.
///
/// Thread: main.
class Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::move_only_function<void()> unsubscribe)
        : m_unsubscribe(std::move(unsubscribe)) {}
    Subscription(Subscription&& other) noexcept
        : m_unsubscribe(std::exchange(other.m_unsubscribe, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            m_unsubscribe = std::exchange(other.m_unsubscribe, nullptr);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { cancel(); }

    void cancel() {
        if (auto unsubscribe = std::exchange(m_unsubscribe, nullptr))
            unsubscribe();
    }

    [[nodiscard]] bool isActive() const { return static_cast<bool>(m_unsubscribe); }

private:
    std::move_only_function<void()> m_unsubscribe;
};

} // namespace kestrove
