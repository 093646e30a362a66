#pragma once

#include "Desktop/SampleBuffer.h"

namespace kestrove {

/// Whether a stream's sample is a picture to show: a valid screen sample that is complete or says
/// nothing of its status. Idle, blank, suspended, started and stopped ones are not.
///
/// Thread: any.
[[nodiscard]] bool isShowable(const SampleBuffer& sample);

} // namespace kestrove
