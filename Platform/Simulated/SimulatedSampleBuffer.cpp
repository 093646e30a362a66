#include "Platform/Simulated/SimulatedSampleBuffer.h"

#include <utility>

namespace kestrove {

SimulatedFrame::SimulatedFrame(int ofStream, std::uint64_t frameNumber, Seconds at,
                               ContentFilter shown, StreamConfiguration with, SimulatedPicture what)
    : stream(ofStream)
    , number(frameNumber)
    , capturedAt(at)
    , filter(std::move(shown))
    , configuration(with)
    , picture(std::move(what)) {}

SimulatedColor SimulatedFrame::colorAt(Point pixel) const {
    return colorInFrame(
        picture,
        {static_cast<double>(configuration.width), static_cast<double>(configuration.height)},
        pixel);
}

SimulatedSampleBuffer::SimulatedSampleBuffer(SimulatedFramePointer frame,
                                             SimulatedSampleTraits traits,
                                             std::function<void()> letGo)
    : m_frame(std::move(frame))
    , m_traits(std::move(traits))
    , m_letGo(std::move(letGo)) {}

} // namespace kestrove
