#pragma once

#include "Async/TaskScope.h"
#include "Tests/Contract/DesktopUnderTest.h"

#include <gtest/gtest.h>

#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace kestrove::contract {

template <class Value>
Task<void> storeInto(Task<Value> task, std::optional<Value>* result) {
    result->emplace(co_await std::move(task));
}

/// What the suites share. Each suite is one class below and one file in `Suites/`.
class ContractTest : public testing::TestWithParam<DesktopFactory> {
protected:
    ContractTest()
        : m_desktop(GetParam().make()) {}

    DesktopUnderTest& desktop() { return *m_desktop; }
    bool waitUntil(const std::function<bool()>& condition) {
        return m_desktop->waitUntil(condition);
    }

    /// Runs a task to its end. Fails the test when it never ends.
    template <class Value>
    std::optional<Value> run(Task<Value> task) {
        std::optional<Value> result;
        TaskScope scope(m_desktop->loop());
        scope.launch(storeInto(std::move(task), &result));
        EXPECT_TRUE(waitUntil([&] { return result.has_value(); })) << "the task never ended";
        return result;
    }

    /// `screens()` must be offered; there always is a main screen.
    Screen mainScreen() {
        for (const auto& screen : m_desktop->screens().screens()) {
            if (screen.isMain)
                return screen;
        }
        ADD_FAILURE() << "no main screen";
        return {};
    }
    Screen secondScreen() {
        for (const auto& screen : m_desktop->screens().screens()) {
            if (!screen.isMain)
                return screen;
        }
        ADD_FAILURE() << "no second screen";
        return {};
    }

    /// A window of an application of its own.
    WindowID openWindow(NewWindow window = {}) {
        if (window.processID == 0)
            window.processID = m_desktop->startApplication("painter");
        return m_desktop->openWindow(window);
    }

private:
    std::unique_ptr<DesktopUnderTest> m_desktop;
};

class ScreensContract : public ContractTest {};
class PointerContract : public ContractTest {};
class WindowServerContract : public ContractTest {};
class WorkspaceContract : public ContractTest {};
/// What a desktop tells of locks and sleep; apart from the rest of Workspace, because a private
/// test desktop may have windows but no session.
class SessionContract : public ContractTest {};
class ScreenCaptureContract : public ContractTest {};
class CaptureStreamContract : public ContractTest {};
class DisplayLayerContract : public ContractTest {};
class HotKeysContract : public ContractTest {};
class UserDefaultsContract : public ContractTest {};
class ApplicationContract : public ContractTest {};
class ScreenRecordingAccessContract : public ContractTest {};
class SystemLogContract : public ContractTest {};

inline std::string nameOf(const testing::TestParamInfo<DesktopFactory>& info) {
    return info.param.name;
}

inline void PrintTo(const DesktopFactory& factory, std::ostream* stream) {
    *stream << factory.name;
}

/// Equal up to what scaling and colour conversion may change.
inline bool isNear(Color a, Color b) {
    constexpr int tolerance = 6;
    return std::abs(a.red - b.red) <= tolerance && std::abs(a.green - b.green) <= tolerance &&
           std::abs(a.blue - b.blue) <= tolerance;
}

inline void PrintTo(const Color& color, std::ostream* stream) {
    *stream << "rgb(" << color.red << ", " << color.green << ", " << color.blue << ")";
}

} // namespace kestrove::contract
