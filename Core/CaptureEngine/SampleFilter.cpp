#include "Core/CaptureEngine/SampleFilter.h"

namespace kestrove {

bool isShowable(const SampleBuffer& sample) {
    if (sample.type() != SampleType::screen || !sample.isValid())
        return false;
    const auto& attachments = sample.attachments();
    if (!attachments || attachments->empty())
        return true;
    const auto status = attachments->front().status;
    return !status || *status == static_cast<int>(FrameStatus::complete);
}

} // namespace kestrove
