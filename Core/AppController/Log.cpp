#include "Core/AppController/AppController.h"

#include <fmt/format.h>

namespace kestrove {

namespace {

constexpr std::string_view category = "source-resolution";

} // namespace

void AppController::logSourceResolution(std::string_view reason) const {
    m_with.systemLog.write(
        m_with.logSubsystem, category, LogLevel::standard,
        fmt::format("source resolution mode={} manualCandidates={} availableDisplays={} reason={}",
                    rawValue(m_followMode), m_with.settings.manualSources.get().size(),
                    m_latestAvailableDisplayIDs.size(), reason));
}

void AppController::logError(std::string_view what, const CaptureError& error) const {
    const auto where = coordinates(error);
    m_with.systemLog.write(m_with.logSubsystem, category, LogLevel::error,
                           fmt::format("{} domain={} code={}", what, where.domain, where.code));
}

} // namespace kestrove
