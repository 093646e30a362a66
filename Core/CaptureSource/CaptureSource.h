#pragma once

#include "Desktop/Identifiers.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>

namespace kestrove {

/// What can be captured: a whole display or one application window. A display and a window with the
/// same number are different sources.
class CaptureSource {
public:
    enum class Kind : std::uint8_t { display, window };

    [[nodiscard]] static CaptureSource display(DisplayID identifier) {
        return {Kind::display, identifier};
    }
    [[nodiscard]] static CaptureSource window(WindowID identifier) {
        return {Kind::window, identifier};
    }

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] bool isDisplay() const { return m_kind == Kind::display; }
    [[nodiscard]] bool isWindow() const { return m_kind == Kind::window; }
    /// The display identifier or the window identifier, as `kind` says.
    [[nodiscard]] std::uint32_t identifier() const { return m_identifier; }

    bool operator==(const CaptureSource&) const = default;

private:
    CaptureSource(Kind kind, std::uint32_t identifier)
        : m_kind(kind)
        , m_identifier(identifier) {}

    Kind m_kind;
    std::uint32_t m_identifier;
};

/// Who owns a window: tells a window that still belongs to the same running application from one
/// whose application has quit and whose number is in use again.
struct WindowOwnerIdentity {
    ProcessID processID = 0;
    std::string bundleIdentifier;

    bool operator==(const WindowOwnerIdentity&) const = default;
};

/// A window that the user picked by hand, with its owner at that time.
struct ManualWindowSelection {
    WindowID windowID = 0;
    WindowOwnerIdentity owner;

    bool operator==(const ManualWindowSelection&) const = default;
};

/// A source together with what the user sees of it.
struct CaptureSourceInfo {
    CaptureSource source;
    /// The display's name or the window's title.
    std::string title;
    /// The owning application's name, or the display's size.
    std::optional<std::string> subtitle;
    /// Absent for a display.
    std::optional<WindowOwnerIdentity> windowOwner;

    /// Which list item this is, whatever its texts say.
    [[nodiscard]] const CaptureSource& id() const { return source; }

    bool operator==(const CaptureSourceInfo&) const = default;
};

} // namespace kestrove

template <>
struct std::hash<kestrove::CaptureSource> {
    std::size_t operator()(const kestrove::CaptureSource& source) const noexcept;
};
template <>
struct std::hash<kestrove::WindowOwnerIdentity> {
    std::size_t operator()(const kestrove::WindowOwnerIdentity& owner) const noexcept;
};
template <>
struct std::hash<kestrove::ManualWindowSelection> {
    std::size_t operator()(const kestrove::ManualWindowSelection& selection) const noexcept;
};
template <>
struct std::hash<kestrove::CaptureSourceInfo> {
    std::size_t operator()(const kestrove::CaptureSourceInfo& info) const noexcept;
};

namespace kestrove {
using CaptureSourceSet = std::unordered_set<CaptureSource>;
} // namespace kestrove
