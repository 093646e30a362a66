#pragma once

#include <QRect>

namespace kestrove {

/// Where a panel of that size opens: below what it belongs to, or above where that has no room,
/// centred on it as far as the screen lets it; beside it where neither has room for most of it.
/// Never over it, since a second click is meant for it and not for whatever would have come there;
/// never beyond the screen, which makes the panel lower if it must. All in pixels of the desktop.
[[nodiscard]] QRect panelPlace(QSize size, QRect anchor, QRect available);

} // namespace kestrove
