#include "Core/CaptureError.h"

namespace kestrove {

ErrorCoordinates coordinates(const CaptureError& error) {
    if (const auto* platform = std::get_if<PlatformError>(&error))
        return {platform->domain, platform->code};
    return {"kestrove.EngineError", static_cast<long>(std::get<EngineError>(error))};
}

} // namespace kestrove
