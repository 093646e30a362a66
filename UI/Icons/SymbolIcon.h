#pragma once

#include <QIcon>

#include <string_view>

namespace kestrove {

/// The symbol of this name, drawn anew for every size and every density of pixels. What it draws in
/// "currentColor" takes the colour of text where it is shown, also when the desktop turns dark.
/// Null when there is no symbol of this name. Main thread.
[[nodiscard]] QIcon symbolIcon(std::string_view name);

} // namespace kestrove
