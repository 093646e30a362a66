#pragma once

#include <cstdint>

namespace kestrove {

/// Why the session had to stop on its own.
enum class CaptureRecoveryReason : std::uint8_t {
    /// The chosen source disappeared and nothing can replace it.
    sourceUnavailable,
    /// Switching to another source failed, and no fallback succeeded.
    switchFailed,
    /// The platform ended the capture stream.
    streamStopped,
};

} // namespace kestrove
