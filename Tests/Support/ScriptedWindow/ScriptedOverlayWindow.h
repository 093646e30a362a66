#pragma once

#include "Desktop/OverlayWindow.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"

namespace kestrove {

/// A frame in memory: what was asked of it, and what it would look like.
class ScriptedOverlayWindow final : public OverlayWindow {
public:
    explicit ScriptedOverlayWindow(CallLog& calls)
        : m_calls(calls) {}

    std::int64_t windowNumber() const override { return number; }
    bool isVisible() const override { return visible; }
    void setFrame(const Rect& newFrame) override {
        m_calls.add("frame");
        frame = newFrame;
    }
    void orderFrontRegardless() override {
        m_calls.add("front");
        visible = true;
    }
    void orderOut() override {
        m_calls.add("out");
        visible = false;
    }

    std::int64_t number = 77;
    bool visible = false;
    Rect frame{0, 0, 100, 100};

private:
    CallLog& m_calls;
};

} // namespace kestrove
