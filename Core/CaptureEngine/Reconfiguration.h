#pragma once

#include "Core/CaptureEngine/CaptureEngineState.h"

#include <cstdint>
#include <memory>

namespace kestrove {

/// One reconfiguration in progress, on the stack of its task. Whichever way the task ends, by
/// success, by a failure or by being dropped, the destructor leaves an engine that claims nothing
/// false about what its stream shows.
class CaptureEngine::Reconfiguration {
public:
    static Task<CaptureResult> run(std::shared_ptr<State> state, CaptureSource source);

    Reconfiguration(std::shared_ptr<State> state, std::uint64_t session);
    Reconfiguration(const Reconfiguration&) = delete;
    Reconfiguration& operator=(const Reconfiguration&) = delete;
    ~Reconfiguration();

private:
    using Outcome = std::expected<void, CaptureError>;

    enum class Progress : std::uint8_t {
        /// The stream shows what it showed before, if it is still there.
        unchanged,
        /// The platform works on it: nobody can tell what the stream shows, or whether it runs.
        changing,
        /// The new filter stands, the new configuration was refused: the frames are of the new
        /// source under the old generation.
        retargetedOnly,
        succeeded,
    };

    [[nodiscard]] bool isOvertaken() const { return m_state->session != m_session; }
    [[nodiscard]] static std::unexpected<CaptureError> overtaken();
    [[nodiscard]] Task<Outcome> apply(ContentFilter filter, StreamConfiguration configuration);
    [[nodiscard]] Task<Outcome> retarget(ContentFilter filter, StreamConfiguration configuration);
    [[nodiscard]] Task<Outcome> create(ContentFilter filter, StreamConfiguration configuration);
    void succeed(CaptureSource source);

    std::shared_ptr<State> m_state;
    std::uint64_t m_session;
    Progress m_progress = Progress::unchanged;
};

} // namespace kestrove
