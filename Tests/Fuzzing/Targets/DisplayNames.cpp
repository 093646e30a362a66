// The name in a display's EDID.
#include "Platform/X11/Screens/Edid.h"
#include "Tests/Fuzzing/Promise.h"

void kestrove::fuzzing::examine(Input input) {
    const auto edid = input.bytes();
    const auto name = x11::edidDisplayName(edid);
    constexpr std::size_t longest = 13; // bytes of text in a descriptor
    promise(!name || (!name->empty() && name->size() <= longest && isReadable(*name)),
            "a display's name is short and readable");
}
