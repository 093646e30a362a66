#include "Tests/X11/Application/Paths.h"

namespace kestrove::test {

std::string programPath() {
    return KESTROVE_PROGRAM;
}

std::string steeredProgramPath() {
    return KESTROVE_STEERED;
}

std::string callPagePath() {
    return KESTROVE_CALL_PAGE;
}

std::string windowReaderPath() {
    return KESTROVE_WINDOW_READER;
}

} // namespace kestrove::test
