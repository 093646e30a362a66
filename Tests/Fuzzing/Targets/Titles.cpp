// Titles in the three forms that programs write them in: always readable text, and comparable.
#include "Core/SourceLister/CanonicalText.h"
#include "Platform/X11/WindowIdentity/CompoundText.h"
#include "Platform/X11/WindowIdentity/PropertyText.h"
#include "Tests/Fuzzing/Promise.h"

void kestrove::fuzzing::examine(Input input) {
    constexpr unsigned forms = 3;
    const auto form = input.byte() % forms;
    const auto title = form == 0   ? x11::textOfUtf8(input.text())
                       : form == 1 ? x11::textOfLatin1(input.text())
                                   : x11::textOfCompound(input.text());
    promise(isReadable(title), "a title is readable");
    promise(x11::textOfUtf8(title) == title, "what is readable stays as it is");
    const auto composed = canonicallyComposed(title);
    promise(isReadable(composed), "its composed form is readable");
    promise(canonicallyComposed(composed) == composed, "composing twice changes nothing");
}
