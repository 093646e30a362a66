#pragma once

#include "Desktop/ScreenRecordingAccess.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"

namespace kestrove {

/// A permission that a test gives and takes.
class ScriptedScreenRecordingAccess final : public ScreenRecordingAccess {
public:
    bool preflight() override {
        calls.add("preflight");
        return isAllowed;
    }
    bool request() override {
        calls.add("request");
        isAllowed = isAllowed || allowsOnRequest;
        return isAllowed;
    }
    void openPreferences() override { calls.add("openPreferences"); }

    bool isAllowed = false;
    bool allowsOnRequest = false;
    CallLog calls;
};

} // namespace kestrove
