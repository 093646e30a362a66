#include "Platform/Simulated/Misuse.h"

#include <cstdio>
#include <cstdlib>

namespace kestrove {

void abortOnMisuse(std::string_view what) {
    std::fprintf(stderr, "simulated desktop misused: %.*s\n", static_cast<int>(what.size()),
                 what.data());
    std::abort();
}

} // namespace kestrove
