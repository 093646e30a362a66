#include "Platform/Simulated/SimulatedStream.h"

#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <string>
#include <utility>

namespace kestrove {

SimulatedStream::SimulatedStream(SimulatedDesktop& desktop, int number, ContentFilter filter,
                                 StreamConfiguration configuration, StopHandler stopped)
    : m_desktop(desktop)
    , m_number(number)
    , m_filter(std::move(filter))
    , m_configuration(configuration)
    , m_stopped(std::move(stopped))
    , m_scope(desktop.loop()) {}

std::expected<void, PlatformError>
SimulatedStream::addScreenOutput(std::shared_ptr<SerialQueue> queue, SampleHandler handler) {
    m_desktop.requireMainThread("addScreenOutput");
    if (!queue || !handler)
        abortOnMisuse("a screen output without a queue or a handler");
    if (m_phase != Phase::created)
        abortOnMisuse("a screen output added to a stream that was started");
    if (m_queue)
        abortOnMisuse("a second screen output");
    m_desktop.capture().record({.call = CaptureCall::addScreenOutput, .stream = m_number});
    if (auto failure = m_desktop.capture().addScreenOutput.answerAtOnce())
        return std::unexpected(std::move(*failure));
    m_queue = std::move(queue);
    m_handler = std::move(handler);
    return {};
}

void SimulatedStream::start(Answer answer) {
    m_desktop.requireMainThread("startCapture");
    if (m_phase != Phase::created)
        abortOnMisuse("a stream started twice");
    if (!m_queue)
        abortOnMisuse("a stream started without a screen output");
    m_desktop.capture().record({.call = CaptureCall::startCapture, .stream = m_number});
    m_phase = Phase::starting;
    m_desktop.capture().startCapture.begin([self = shared_from_this(), told = std::move(answer)](
                                               auto failure) { self->finishStart(failure, told); });
}

void SimulatedStream::finishStart(const std::optional<PlatformError>& failure,
                                  const Answer& answer) {
    // It was stopped, or let go of, before it ran.
    if (m_phase != Phase::starting)
        return answer(std::unexpected(simulatedError(SimulatedError::notRunning)));
    if (const auto obstacle = failure ? failure : findObstacle(m_filter, m_configuration)) {
        end();
        return answer(std::unexpected(*obstacle));
    }
    m_phase = Phase::running;
    m_worldChanges = m_desktop.events().changed.subscribe([this] { worldChanged(); });
    deliverWholeFrame();
    answer({});
}

void SimulatedStream::stop(Answer answer) {
    m_desktop.requireMainThread("stopCapture");
    requireStarted("stopped");
    m_desktop.capture().record({.call = CaptureCall::stopCapture, .stream = m_number});
    const auto isRunning = m_phase == Phase::running || m_phase == Phase::starting;
    m_stopped = nullptr;
    if (isRunning) {
        end();
        m_phase = Phase::stopping;
    }
    m_desktop.capture().stopCapture.begin(
        [self = shared_from_this(), isRunning, told = std::move(answer)](auto failure) {
            self->m_phase = Phase::ended;
            if (!failure && !isRunning)
                failure = simulatedError(SimulatedError::notRunning);
            told(failure ? std::expected<void, PlatformError>(std::unexpected(*failure))
                         : std::expected<void, PlatformError>());
        });
}

void SimulatedStream::updateContentFilter(ContentFilter filter, Answer answer) {
    m_desktop.requireMainThread("updateContentFilter");
    requireStarted("given another filter");
    m_desktop.capture().record(
        {.call = CaptureCall::updateContentFilter, .stream = m_number, .filter = filter});
    m_desktop.capture().updateContentFilter.begin([self = shared_from_this(),
                                                   filter = std::move(filter),
                                                   told = std::move(answer)](auto failure) {
        const auto obstacle = failure ? failure : self->findObstacle(filter, self->m_configuration);
        if (obstacle)
            return told(std::unexpected(*obstacle));
        self->m_filter = filter;
        self->deliverWholeFrame();
        told({});
    });
}

void SimulatedStream::updateConfiguration(StreamConfiguration configuration, Answer answer) {
    m_desktop.requireMainThread("updateConfiguration");
    requireStarted("configured anew");
    m_desktop.capture().record({.call = CaptureCall::updateConfiguration,
                                .stream = m_number,
                                .configuration = configuration});
    m_desktop.capture().updateConfiguration.begin([self = shared_from_this(), configuration,
                                                   told = std::move(answer)](auto failure) {
        const auto obstacle = failure ? failure : self->findObstacle(self->m_filter, configuration);
        if (obstacle)
            return told(std::unexpected(*obstacle));
        self->m_configuration = configuration;
        self->deliverWholeFrame();
        told({});
    });
}

void SimulatedStream::abandon() {
    m_desktop.requireMainThread("letting go of a stream");
    m_desktop.capture().record({.call = CaptureCall::destroyStream, .stream = m_number});
    m_stopped = nullptr;
    end();
}

void SimulatedStream::endByItself(PlatformError error) {
    m_desktop.requireMainThread("ending a stream");
    if (m_phase != Phase::running)
        abortOnMisuse("the platform ends a stream that does not run");
    m_desktop.capture().recordEnd(m_number);
    end();
    if (!m_stopped)
        return;
    // A platform reports from a thread of its own; one that its user let go of meanwhile reports
    // nothing.
    m_desktop.capture().platformQueue()->post([self = weak_from_this(), error = std::move(error)] {
        const auto stream = self.lock();
        if (stream && stream->m_stopped)
            std::exchange(stream->m_stopped, nullptr)(error);
    });
}

void SimulatedStream::requireStarted(const char* what) const {
    if (m_phase == Phase::created)
        abortOnMisuse(std::string("a stream that was never started is ") + what);
}

std::optional<PlatformError> SimulatedStream::findObstacle(const ContentFilter& filter,
                                                           const StreamConfiguration& with) const {
    if (m_phase != Phase::starting && m_phase != Phase::running)
        return simulatedError(SimulatedError::notRunning);
    return findCaptureObstacle(m_desktop, filter, with);
}

void SimulatedStream::end() {
    m_phase = Phase::ended;
    // A sample that is let go of later is no occasion for another one.
    m_mustDeliver = false;
    m_worldChanges.cancel();
    m_nextDelivery.cancel();
    m_scope.cancelAll();
}

} // namespace kestrove
