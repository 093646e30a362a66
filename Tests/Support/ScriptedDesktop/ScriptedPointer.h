#pragma once

#include "Async/Signal.h"
#include "Desktop/Pointer.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"

namespace kestrove {

/// A pointer that a test moves by hand.
class ScriptedPointer final : public Pointer {
public:
    explicit ScriptedPointer(CallLog& calls)
        : m_calls(calls) {}

    Point location() override {
        m_calls.add("pointer location");
        return point;
    }
    Subscription addGlobalMovedMonitor(std::function<void()> moved) override {
        return m_calls.watch("global pointer", globalMoved.subscribe(std::move(moved)));
    }
    Subscription addLocalMovedMonitor(std::function<void()> moved) override {
        return m_calls.watch("local pointer", localMoved.subscribe(std::move(moved)));
    }

    Point point;
    Signal<> globalMoved;
    Signal<> localMoved;

private:
    CallLog& m_calls;
};

} // namespace kestrove
