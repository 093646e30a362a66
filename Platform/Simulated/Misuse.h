#pragma once

#include <string_view>

namespace kestrove {

/// Ends the process with `what` on standard error: the simulated desktop was used in a way in which
/// a real one must not be used.
[[noreturn]] void abortOnMisuse(std::string_view what);

} // namespace kestrove
