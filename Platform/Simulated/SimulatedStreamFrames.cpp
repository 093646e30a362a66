// When a simulated stream sends frames, and what is in them.
#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "Platform/Simulated/SimulatedStream.h"

#include <memory>
#include <utility>

namespace kestrove {

namespace {

Seconds seconds(MediaTime time) {
    return Seconds(static_cast<double>(time.value) / time.timescale);
}

} // namespace

void SimulatedStream::deliver(SimulatedSampleTraits traits) {
    m_desktop.requireMainThread("delivering a sample");
    if (m_phase != Phase::running)
        abortOnMisuse("a sample of a stream that does not run");
    send(*takePictureNow(), std::move(traits));
}

std::optional<SimulatedPicture> SimulatedStream::takePictureNow() const {
    return takePicture(m_desktop, m_filter,
                       m_configuration.showsCursor ? CursorShown::yes : CursorShown::no);
}

void SimulatedStream::worldChanged() {
    if (auto obstacle = findCaptureObstacle(m_desktop, m_filter, m_configuration))
        return endByItself(std::move(*obstacle));
    if (takePictureNow() == m_lastPicture)
        return;
    m_mustDeliver = true;
    deliverWhenDue();
}

void SimulatedStream::deliverWholeFrame() {
    m_lastPicture.reset();
    m_mustDeliver = true;
    m_nextDelivery.cancel();
    deliverNow();
}

void SimulatedStream::deliverWhenDue() {
    const auto wait =
        m_lastDelivery + seconds(m_configuration.minimumFrameInterval) - m_desktop.loop().now();
    if (wait <= Seconds(0))
        deliverNow();
    else if (!m_nextDelivery.isPending())
        m_nextDelivery = m_desktop.loop().runAfter(wait, [this] { deliverNow(); });
}

void SimulatedStream::deliverNow() {
    // Whoever lets go of a sample asks again.
    if (!m_mustDeliver || m_samplesOnTheirWay >= m_configuration.queueDepth)
        return;
    m_mustDeliver = false;
    auto picture = takePictureNow();
    if (picture != m_lastPicture)
        send(std::move(*picture), {});
}

void SimulatedStream::send(SimulatedPicture picture, SimulatedSampleTraits traits) {
    m_lastPicture = picture;
    m_lastDelivery = m_desktop.loop().now();
    ++m_samplesOnTheirWay;
    auto frame = std::make_shared<const SimulatedFrame>(
        m_number, ++m_frameCount, m_lastDelivery, m_filter, m_configuration, std::move(picture));
    auto sample = std::make_shared<const SimulatedSampleBuffer>(
        std::move(frame), std::move(traits), [self = weak_from_this()] {
            if (const auto stream = self.lock())
                stream->sampleLetGo();
        });
    m_queue->post([handler = m_handler, sample = std::move(sample)]() mutable {
        handler(std::move(sample));
    });
}

void SimulatedStream::sampleLetGo() {
    --m_samplesOnTheirWay;
    if (m_mustDeliver)
        m_scope.post([this] { deliverWhenDue(); });
}

} // namespace kestrove
