#include "Platform/Simulated/SimulatedDisplayLayer.h"

#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

bool hasPicture(const SampleBuffer& sample) {
    const auto& attachments = sample.attachments();
    return !attachments || attachments->empty() ||
           attachments->front().status.value_or(0) == static_cast<int>(FrameStatus::complete);
}

} // namespace

void SimulatedDisplayLayer::setHost(NativeViewHandle host) {
    m_desktop.requireMainThread("setHost");
    if (host == m_host)
        return;
    if (host != 0)
        m_desktop.views().attach(host, *this);
    if (const auto before = std::exchange(m_host, host))
        m_desktop.views().detach(before);
}

void SimulatedDisplayLayer::enqueue(SampleBufferPointer sample) {
    m_desktop.requireMainThread("enqueue");
    if (!sample || !sample->isValid() || sample->type() != SampleType::screen ||
        !hasPicture(*sample))
        abortOnMisuse("a display layer given what cannot be shown");
    ++m_enqueueCount;
    if (m_status == DisplayLayerStatus::failed)
        return;
    const auto* ours = dynamic_cast<const SimulatedSampleBuffer*>(sample.get());
    if (!ours) {
        m_status = DisplayLayerStatus::failed;
        return;
    }
    m_status = DisplayLayerStatus::rendering;
    show(std::move(sample), ours->frame());
}

void SimulatedDisplayLayer::flush() {
    m_desktop.requireMainThread("flush");
    ++m_flushCount;
    m_status = DisplayLayerStatus::unknown;
    show(nullptr, nullptr);
}

void SimulatedDisplayLayer::fail() {
    m_desktop.requireMainThread("fail");
    m_status = DisplayLayerStatus::failed;
}

void SimulatedDisplayLayer::show(SampleBufferPointer sample, SimulatedFramePointer frame) {
    if (visible() != frame)
        m_changes.push_back({m_desktop.loop().now(), std::move(frame)});
    m_sample = std::move(sample);
}

SimulatedFramePointer SimulatedDisplayLayer::visible() const {
    return m_changes.empty() ? nullptr : m_changes.back().frame;
}

SimulatedFramePointer SimulatedDisplayLayer::visibleAt(Seconds moment) const {
    const auto later = std::ranges::upper_bound(m_changes, moment, {}, &Change::at);
    return later == m_changes.begin() ? nullptr : std::prev(later)->frame;
}

} // namespace kestrove
