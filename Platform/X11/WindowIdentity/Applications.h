#pragma once

#include "Desktop/Identifiers.h"
#include "Desktop/ScreenCapture.h"
#include "Platform/Linux/DesktopEntries.h"
#include "Platform/X11/WindowIdentity/WindowIdentity.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace kestrove::x11 {

/// Which application a process is.
///
/// The windows of one process may name different applications (the parts of an office suite do).
/// Whoever chose a window and asks for its process later must hear the same name again, so the name
/// is the process's: that of its oldest window when the process is first met, and it stays that for
/// the life of the process.
///
/// One of these serves capture, window list and workspace. Thread: main.
class Applications {
public:
    explicit Applications(DesktopEntries entries)
        : m_entries(std::move(entries)) {}

    /// Meets the processes of these windows. Best given all windows of the desktop, whichever are
    /// wanted: the oldest of a process may be among the others.
    void meet(std::span<const WindowIdentity> windows);

    /// Absent when no such process runs or none of its windows was met.
    [[nodiscard]] std::optional<std::string> bundleIdentifier(ProcessID process);

    /// Who owns the window: absent when it names neither process nor application. The process is 0
    /// when only that is unknown; the identifier is empty when only that is.
    [[nodiscard]] std::optional<CapturableApplication> owner(const WindowIdentity& window);

private:
    struct Known {
        std::uint64_t startTime;
        std::string bundleIdentifier;
    };

    void forgetEnded();
    std::string nameOf(const WindowIdentity& window, const std::string& bundleIdentifier);

    DesktopEntries m_entries;
    std::map<ProcessID, Known> m_known;
};

} // namespace kestrove::x11
