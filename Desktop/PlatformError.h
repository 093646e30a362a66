#pragma once

#include <string>

namespace kestrove {

/// A failure as the platform reports it. Passed through unchanged to whoever decides.
struct PlatformError {
    PlatformError(std::string errorDomain, long errorCode, std::string whatHappened = {})
        : domain(static_cast<std::string&&>(errorDomain))
        , code(errorCode)
        , description(static_cast<std::string&&>(whatHappened)) {}

    /// Which part of the platform failed ("X11", for instance).
    std::string domain;
    long code;
    /// For diagnostics only.
    std::string description;

    bool operator==(const PlatformError&) const = default;
};

} // namespace kestrove
