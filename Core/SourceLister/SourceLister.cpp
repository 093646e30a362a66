#include "Core/SourceLister/SourceLister.h"

#include "Core/SourceLister/CanonicalText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

namespace kestrove::SourceLister {

namespace {

/// Points. Smaller windows are badges, pop-ups and the like, which nobody wants to share.
constexpr Size smallestListed{200, 100};

constexpr int normalLayer = 0;

/// Applications of the desktop itself, whose windows are part of its furniture.
constexpr std::array<std::string_view, 7> hiddenApplicationPrefixes{
    "com.apple.dock",           "com.apple.controlcenter",
    "com.apple.systemuiserver", "com.apple.NotificationCenter",
    "com.apple.WindowManager",  "com.apple.loginwindow",
    "com.apple.wallpaper",
};

bool isHidden(const CapturableApplication& application) {
    return std::ranges::any_of(hiddenApplicationPrefixes, [&application](std::string_view prefix) {
        return application.bundleIdentifier.starts_with(prefix);
    });
}

bool isListed(const CapturableWindow& window, const WindowIDSet& excluded, const Context& context) {
    const auto& application = window.owningApplication;
    return application && application->bundleIdentifier != context.ownBundleIdentifier &&
           !excluded.contains(window.windowID) && window.windowLayer == normalLayer &&
           window.title && !window.title->empty() && window.frame.width >= smallestListed.width &&
           window.frame.height >= smallestListed.height && !isHidden(*application);
}

CaptureSourceInfo displayInfo(const CapturableDisplay& display,
                              const std::vector<Screen>& screens) {
    const auto screen = std::ranges::find_if(
        screens, [&display](const Screen& each) { return each.displayID == display.displayID; });
    return {CaptureSource::display(display.displayID),
            screen == screens.end() ? "ディスプレイ" : screen->localizedName,
            fmt::format("{} × {}", display.width, display.height), std::nullopt};
}

/// Absent when the desktop does not say enough to recognise the owner later.
std::optional<WindowOwnerIdentity> owner(const CapturableApplication& application) {
    if (application.processID < 1 || application.bundleIdentifier.empty())
        return std::nullopt;
    return WindowOwnerIdentity{application.processID, application.bundleIdentifier};
}

CaptureSourceInfo windowInfo(const CapturableWindow& window) {
    const auto& application = window.owningApplication;
    return {CaptureSource::window(window.windowID), window.title.value_or("(無題)"),
            application ? application->applicationName : "不明",
            application ? owner(*application) : std::nullopt};
}

/// By application name, ordinally: the same everywhere, whatever the user's language.
std::vector<CaptureSourceInfo> sortedByApplication(std::vector<CaptureSourceInfo> windows) {
    // A multimap keeps equal keys in the order of insertion: the windows of one application stay
    // as they were.
    std::multimap<std::string, CaptureSourceInfo> sorted;
    for (auto& window : windows) {
        auto key = canonicallyComposed(window.subtitle.value_or(""));
        sorted.emplace(std::move(key), std::move(window));
    }
    windows.clear();
    for (auto& [key, window] : sorted)
        windows.push_back(std::move(window));
    return windows;
}

} // namespace

Lists makeLists(const ShareableContent& from, const WindowIDSet& excludingWindowIDs,
                const Context& context) {
    Lists lists;
    for (const auto& display : from.displays)
        lists.displays.push_back(displayInfo(display, context.screens));
    for (const auto& window : from.windows) {
        if (isListed(window, excludingWindowIDs, context))
            lists.windows.push_back(windowInfo(window));
    }
    lists.windows = sortedByApplication(std::move(lists.windows));
    context.log.write(
        context.ownBundleIdentifier.value_or(""), "", LogLevel::standard,
        fmt::format("[kestrove] SourceLister: {} displays, {} raw windows → {} shown after filter",
                    from.displays.size(), from.windows.size(), lists.windows.size()));
    return lists;
}

Snapshot makeSnapshot(const ShareableContent& from, const WindowIDSet& excludingWindowIDs,
                      const Context& context) {
    Snapshot snapshot;
    for (const auto& display : from.displays)
        snapshot.existingSources.insert(CaptureSource::display(display.displayID));
    snapshot.onScreenSources = snapshot.existingSources;
    for (const auto& window : from.windows) {
        if (excludingWindowIDs.contains(window.windowID))
            continue;
        const auto source = CaptureSource::window(window.windowID);
        snapshot.existingSources.insert(source);
        if (window.isOnScreen)
            snapshot.onScreenSources.insert(source);
    }
    snapshot.lists = makeLists(from, excludingWindowIDs, context);
    return snapshot;
}

} // namespace kestrove::SourceLister
