#pragma once

namespace kestrove {

/// From now on assistive technology sees recorders as buttons that have a value and a hint. Once a
/// process; later calls do nothing. Main thread.
void installRecorderAccessibility();

} // namespace kestrove
