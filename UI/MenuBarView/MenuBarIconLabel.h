#pragma once

#include <QIcon>

namespace kestrove {

/// The icon in the tray: the image "MenuBarIcon" where the application has one, otherwise the
/// symbol "rectangle.on.rectangle". The same in every state of the session, which only the menu
/// shows. A tray does not tell whether it is light or dark, so the image is told apart from both.
[[nodiscard]] QIcon menuBarIconLabel();

} // namespace kestrove
