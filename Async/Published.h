#pragma once

#include "Async/Signal.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace kestrove {

/// A value that others watch.
///
/// Setting it announces the new value to the subscribers, then stores it, then runs the owner's
/// `stored` action (which persists it, for instance). A subscriber that reads the value inside its
/// callback therefore still sees the old one. Setting an equal value announces it again:
/// subscribers that care compare. A subscriber may destroy the owner; nobody else is told then, and
/// the value is neither stored nor persisted.
///
/// When a subscriber sets the value again while it is being told, the inner value is announced and
/// stored first and the outer one is stored last.
///
/// Watching does not change the value: an owner that hands it out as `const` keeps setting it to
/// itself.
///
/// Thread: main.
template <class Value>
class Published {
public:
    using Stored = std::function<void(const Value&)>;
    using Callback = Signal<Value>::Callback;

    explicit Published(Value initial, Stored stored = {})
        : m_state(std::make_shared<State>(std::move(initial), std::move(stored))) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;
    ~Published() { m_state->changes.reset(); }

    [[nodiscard]] const Value& get() const { return m_state->value; }

    void set(Value value) {
        const auto state = m_state;
        state->changes->emit(value);
        if (!state->changes)
            return;
        state->value = std::move(value);
        if (state->stored)
            state->stored(state->value);
    }

    /// Every value that is set from now on.
    [[nodiscard]] Subscription subscribe(Callback callback) const {
        return m_state->changes->subscribe(std::move(callback));
    }

    /// The value as it is, inside this call, then every value that is set.
    [[nodiscard]] Subscription observe(const Callback& callback) const {
        auto subscription = m_state->changes->subscribe(callback);
        callback(Value(m_state->value));
        return subscription;
    }

private:
    struct State {
        State(Value initial, Stored action)
            : value(std::move(initial))
            , stored(std::move(action)) {}
        Value value;
        Stored stored;
        /// Absent once the owner has gone.
        std::optional<Signal<Value>> changes = std::optional<Signal<Value>>(std::in_place);
    };

    std::shared_ptr<State> m_state;
};

} // namespace kestrove
