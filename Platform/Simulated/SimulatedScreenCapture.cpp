#include "Platform/Simulated/SimulatedScreenCapture.h"

#include "Async/Completion.h"
#include "Platform/Simulated/SimulatedCaptureStream.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <utility>

namespace kestrove {

namespace {

using ContentResult = std::expected<ShareableContent, PlatformError>;
using ImageResult = std::expected<StillImage, PlatformError>;

std::optional<CapturableApplication> ownerOf(const SimulatedDesktop& desktop,
                                             const SimulatedWindow& window) {
    const auto* owner = desktop.findApplication(window.processID);
    if (!owner)
        return std::nullopt;
    return CapturableApplication{owner->bundleIdentifier.value_or(""), owner->name,
                                 owner->processID};
}

ContentResult readContent(const SimulatedDesktop& desktop, DesktopWindows desktopWindows,
                          WindowsListed listed) {
    if (!desktop.isRecordingAllowed() || !desktop.isWindowListReadable())
        return std::unexpected(simulatedError(SimulatedError::notAllowed));
    ShareableContent content;
    for (const auto& display : desktop.displays())
        content.displays.push_back({display.displayID, static_cast<int>(display.frame.width),
                                    static_cast<int>(display.frame.height)});
    for (const auto& window : desktop.windows()) {
        if (window.isDesktopElement && desktopWindows == DesktopWindows::excluded)
            continue;
        if (!window.isOnScreen && listed == WindowsListed::onScreenOnly)
            continue;
        content.windows.push_back({window.windowID, window.layer, window.title, window.frame,
                                   window.isOnScreen, ownerOf(desktop, window)});
    }
    return content;
}

Task<ContentResult> answerContent(SimulatedDesktop& desktop, DesktopWindows desktopWindows,
                                  WindowsListed listed) {
    desktop.requireMainThread("shareableContent");
    desktop.capture().record({.call = CaptureCall::shareableContent,
                              .desktopWindows = desktopWindows,
                              .windowsListed = listed});
    const Completion<ContentResult> completion(desktop.loop());
    desktop.capture().shareableContent.begin(
        [&desktop, desktopWindows, listed, completion](auto failure) {
            auto content = failure ? std::unexpected(std::move(*failure))
                                   : readContent(desktop, desktopWindows, listed);
            if (!content)
                desktop.capture().recordFailedListing();
            completion.complete(std::move(content));
        });
    co_return co_await completion;
}

ImageResult readImage(const SimulatedDesktop& desktop, const ContentFilter& filter,
                      const StreamConfiguration& configuration) {
    if (auto obstacle = findCaptureObstacle(desktop, filter, configuration))
        return std::unexpected(std::move(*obstacle));
    const auto picture = takePicture(
        desktop, filter, configuration.showsCursor ? CursorShown::yes : CursorShown::no);
    return draw(*picture, static_cast<int>(configuration.width),
                static_cast<int>(configuration.height));
}

Task<ImageResult> answerImage(SimulatedDesktop& desktop, ContentFilter filter,
                              StreamConfiguration configuration) {
    desktop.requireMainThread("captureImage");
    desktop.capture().record(
        {.call = CaptureCall::captureImage, .filter = filter, .configuration = configuration});
    const Completion<ImageResult> completion(desktop.loop());
    desktop.capture().captureImage.begin(
        [&desktop, filter = std::move(filter), configuration, completion](auto failure) {
            completion.complete(failure ? std::unexpected(std::move(*failure))
                                        : readImage(desktop, filter, configuration));
        });
    co_return co_await completion;
}

} // namespace

Task<ContentResult> SimulatedScreenCapture::shareableContent(DesktopWindows desktopWindows,
                                                             WindowsListed windowsListed) {
    return answerContent(m_desktop, desktopWindows, windowsListed);
}

std::shared_ptr<CaptureStream> SimulatedScreenCapture::makeStream(ContentFilter filter,
                                                                  StreamConfiguration configuration,
                                                                  StopHandler stopped) {
    m_desktop.requireMainThread("makeStream");
    auto stream =
        m_desktop.capture().makeStream(std::move(filter), configuration, std::move(stopped));
    m_desktop.capture().record({.call = CaptureCall::makeStream,
                                .stream = stream->number(),
                                .filter = stream->filter(),
                                .configuration = configuration});
    return std::make_shared<SimulatedCaptureStream>(m_desktop.loop(), std::move(stream));
}

Task<ImageResult> SimulatedScreenCapture::captureImage(ContentFilter filter,
                                                       StreamConfiguration configuration) {
    return answerImage(m_desktop, std::move(filter), configuration);
}

} // namespace kestrove
