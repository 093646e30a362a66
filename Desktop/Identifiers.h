#pragma once

#include <cstdint>

namespace kestrove {

/// A display. Stable for one display as long as the desktop can tell it is the same one.
using DisplayID = std::uint32_t;

/// A window as the window server numbers it. Not stable across the window's life.
using WindowID = std::uint32_t;

/// A process. Numbers are used again by the system after a process has gone.
using ProcessID = std::int32_t;

} // namespace kestrove
