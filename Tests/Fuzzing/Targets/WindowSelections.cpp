// Stored selections of windows: what decodes is written back as itself.
#include "Core/CaptureSource/CaptureSourceCoding.h"
#include "Tests/Fuzzing/RoundTrip.h"

void kestrove::fuzzing::examine(Input input) {
    if (const auto json = parseJson(input.bytes()))
        comesBack(*json, decodeManualWindowSelection);
}
