#pragma once

#include "Core/ActiveDisplayTracker/ActiveDisplayTracker.h"
#include "Tests/Support/ScriptedDesktop/ScriptedFollowedDesktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrove {

/// A tracker on two displays: 1 is the main one, 2 stands to its right and reaches 20 points above
/// it. What is published goes to the log of the calls.
class ActiveDisplayTrackerFixture : public testing::Test {
protected:
    using Calls = std::vector<std::string>;

    ActiveDisplayTrackerFixture() {
        m_desktop.screens.add({0, 0, 1920, 1080}, 1);
        m_desktop.screens.add({1920, 200, 1440, 900}, 2);
        m_desktop.pointer.point = onFirst;
        m_subscription = m_tracker.currentDisplay().subscribe([this](std::optional<DisplayID> now) {
            m_desktop.calls.add("published " + (now ? std::to_string(*now) : "none"));
        });
    }

    [[nodiscard]] Calls calls() { return m_desktop.calls.take(); }
    /// Starts, and forgets what that asked and published.
    void start(FollowMode mode) {
        m_tracker.start(mode);
        (void)calls();
    }
    /// Lets the debounce interval pass, and returns what that published.
    [[nodiscard]] Calls settle() {
        m_desktop.loop.advance(Seconds(0.2));
        Calls published;
        for (const auto& call : calls()) {
            if (call.starts_with("published"))
                published.push_back(call);
        }
        return published;
    }

    static constexpr Point onFirst{100, 100};
    static constexpr Point onSecond{2000, 500};
    static constexpr Point nowhere{2000, 10};

    ScriptedFollowedDesktop m_desktop;
    ActiveDisplayTracker m_tracker{m_desktop.seam(), FollowMode::mouse, Seconds(0.15)};
    Subscription m_subscription;
};

} // namespace kestrove
