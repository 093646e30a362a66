#pragma once

#include "Desktop/DisplayLayer.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedSample.h"

#include <optional>

namespace kestrove {

/// A layer whose status a test sets; it logs "flush" and "show NAME".
class ScriptedDisplayLayer final : public DisplayLayer {
public:
    explicit ScriptedDisplayLayer(CallLog& calls)
        : m_calls(calls) {}

    void setHost(NativeViewHandle host) override { currentHost = host; }
    void enqueue(SampleBufferPointer sample) override {
        shown = dynamic_cast<const ScriptedSample&>(*sample).name;
        m_calls.add("show " + *shown);
    }
    void flush() override {
        shown.reset();
        m_calls.add("flush");
    }
    DisplayLayerStatus status() const override { return currentStatus; }

    DisplayLayerStatus currentStatus = DisplayLayerStatus::rendering;
    NativeViewHandle currentHost = 0;
    /// The name of the sample that is visible.
    std::optional<std::string> shown;

private:
    CallLog& m_calls;
};

} // namespace kestrove
