#pragma once

#include "Util/PermissionGuard.h"

namespace kestrove {

/// Shows `alert` above all windows and returns, when the user has chosen, the index of the button.
/// The main loop goes on meanwhile. Closing the alert counts as its last button. Main thread.
[[nodiscard]] std::size_t runModalAlert(const WarningAlert& alert);

} // namespace kestrove
