#pragma once

#include "Core/AppController/CaptureSessionState.h"

#include <optional>
#include <string_view>

namespace kestrove {

/// What the user should do next, in Japanese; absent when there is nothing to do.
[[nodiscard]] std::optional<std::string_view> recoveryGuidance(CaptureSessionState state);

} // namespace kestrove
