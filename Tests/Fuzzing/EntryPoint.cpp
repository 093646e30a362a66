#include "Tests/Fuzzing/Promise.h"

#include <cstddef>
#include <cstdint>

/// What the fuzzer calls, by this name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kestrove::fuzzing::examine({data, size});
    return 0;
}
