#pragma once

#include "Core/Collaborators/CaptureControlling.h"
#include "Core/SourceLister/SourceLists.h"
#include "Desktop/ScreenCapture.h"
#include "Desktop/Screens.h"
#include "Desktop/SystemLog.h"

#include <optional>
#include <string>
#include <vector>

/// From one reading of what can be captured to what the user may pick. Free of state; the one
/// effect is a diagnostic line in the log. Thread: any.
namespace kestrove::SourceLister {

/// What the lists need besides the content.
struct Context {
    /// Where displays have their names from.
    std::vector<Screen> screens;
    /// Our own windows are never listed. Absent: none is known to be ours by its application.
    std::optional<std::string> ownBundleIdentifier;
    SystemLog& log;
};

/// Displays in the order of the content. Of the windows those that a user would call a window, on
/// screen or not, sorted by application name; `excludingWindowIDs` are our own.
[[nodiscard]] Lists makeLists(const ShareableContent& from, const WindowIDSet& excludingWindowIDs,
                              const Context& context);

[[nodiscard]] Snapshot makeSnapshot(const ShareableContent& from,
                                    const WindowIDSet& excludingWindowIDs, const Context& context);

} // namespace kestrove::SourceLister
