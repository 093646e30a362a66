#pragma once

#include "Desktop/Identifiers.h"

#include <cstdint>
#include <optional>

namespace kestrove {

/// When the process began, in ticks since the machine started: with its number, that is one process
/// for good. Absent when no such process runs; one that has ended but was not collected by its
/// parent (a zombie) does not run.
[[nodiscard]] std::optional<std::uint64_t> processStartTime(ProcessID process);

} // namespace kestrove
