#pragma once

#include <string>
#include <string_view>

namespace kestrove {

/// The canonically composed form (NFC) of a UTF-8 text: texts that Unicode calls equivalent have
/// the same one. Comparing two of them byte by byte compares their Unicode scalar values. What is
/// not UTF-8 stays as it is. Thread: any.
[[nodiscard]] std::string canonicallyComposed(std::string_view text);

} // namespace kestrove
