#pragma once

#include <QString>

namespace kestrove {

/// Has the screen reader read `message` out at once, wherever the focus is. Does nothing while no
/// assistive technology is there. Main thread.
void announceToScreenReader(const QString& message);

} // namespace kestrove
