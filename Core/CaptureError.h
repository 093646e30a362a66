#pragma once

#include "Desktop/PlatformError.h"

#include <string>
#include <variant>

namespace kestrove {

/// The capture engine's own errors. `streamCreationFailed` is for callers that report a stream that
/// could not be created; the engine never raises it itself.
enum class EngineError { displayNotFound, windowNotFound, streamCreationFailed };

/// Why a capture could not be started or retargeted: an error of the engine, or of the platform.
using CaptureError = std::variant<EngineError, PlatformError>;

/// Domain and code as log lines show them.
struct ErrorCoordinates {
    std::string domain;
    long code = 0;
};

/// An engine error has the domain "kestrove.EngineError" and its place in the enumeration as code.
[[nodiscard]] ErrorCoordinates coordinates(const CaptureError& error);

} // namespace kestrove
