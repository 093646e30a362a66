#include "Core/AppController/DiagnosticOutput.h"

#include <cstdio>
#include <string>

namespace kestrove {

void StandardOutput::writeLine(std::string_view line) {
    std::fputs((std::string(line) + '\n').c_str(), stdout);
    std::fflush(stdout);
}

} // namespace kestrove
