#pragma once

#include "Core/AppController/CaptureSessionState.h"
#include "Core/CaptureSource/CaptureSource.h"
#include "Desktop/ScreenCapture.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>

namespace kestrove::simulation {

// What the checkers speak of.

template <class List, class Value>
[[nodiscard]] bool contains(const List& list, const Value& value) {
    return std::ranges::find(list, value) != std::ranges::end(list);
}

[[nodiscard]] bool isOneOf(CaptureSessionState::Kind kind,
                           std::initializer_list<CaptureSessionState::Kind> kinds);
/// Whether something may be asked of the capture service.
[[nodiscard]] bool mayCapture(CaptureSessionState state);
[[nodiscard]] const char* nameOf(CaptureSessionState state);
[[nodiscard]] std::string nameOf(const std::optional<CaptureSource>& source);
[[nodiscard]] CaptureSource sourceOf(const ContentFilter& filter);
/// Whether the desktop could show it now: windows are captured from what is on the screen.
[[nodiscard]] bool canBeCaptured(const SimulatedDesktop& desktop, CaptureSource source);

} // namespace kestrove::simulation
