#pragma once

#include <string>

namespace kestrove::test {

/// Where this build has what the tests start: absolute paths.
std::string programPath();
/// The program that a test steers while it runs.
std::string steeredProgramPath();
/// The page with which a browser captures a window.
std::string callPagePath();
/// Reads a window's accessible elements.
std::string windowReaderPath();

} // namespace kestrove::test
