// Stored sources and owners of windows: what decodes is written back as itself.
#include "Core/CaptureSource/CaptureSourceCoding.h"
#include "Tests/Fuzzing/RoundTrip.h"

void kestrove::fuzzing::examine(Input input) {
    const auto json = parseJson(input.bytes());
    if (!json)
        return;
    comesBack(*json, decodeCaptureSource);
    comesBack(*json, decodeWindowOwnerIdentity);
}
