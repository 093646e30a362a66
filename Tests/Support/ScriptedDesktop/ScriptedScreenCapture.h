#pragma once

#include "Async/Completion.h"
#include "Desktop/ScreenCapture.h"

#include <utility>
#include <vector>

namespace kestrove {

/// A capture service that can say what can be captured, when a test lets it, and nothing else.
class ScriptedScreenCapture final : public ScreenCapture {
public:
    using Content = std::expected<ShareableContent, PlatformError>;

    explicit ScriptedScreenCapture(MainLoop& loop)
        : m_loop(loop) {}

    Task<Content> shareableContent(DesktopWindows desktopWindows,
                                   WindowsListed windowsListed) override {
        requests.emplace_back(desktopWindows, windowsListed);
        Completion<Content> content(m_loop);
        m_pending.push_back(content);
        co_return co_await content;
    }
    std::shared_ptr<CaptureStream> makeStream(ContentFilter /*filter*/,
                                              StreamConfiguration /*configuration*/,
                                              StopHandler /*stopped*/) override {
        return nullptr;
    }
    Task<std::expected<StillImage, PlatformError>>
    captureImage(ContentFilter /*filter*/, StreamConfiguration /*configuration*/) override {
        co_return std::unexpected(PlatformError("Scripted", 1, "takes no pictures"));
    }

    /// Answers every request so far.
    void answer(const Content& content) {
        for (const auto& pending : std::exchange(m_pending, {}))
            pending.complete(content);
    }

    std::vector<std::pair<DesktopWindows, WindowsListed>> requests;

private:
    MainLoop& m_loop;
    std::vector<Completion<Content>> m_pending;
};

} // namespace kestrove
