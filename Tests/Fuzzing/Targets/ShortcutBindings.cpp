// Stored shortcuts: what decodes is written back as itself, and can be shown and judged.
#include "Core/GlobalShortcuts/ShortcutBindingCoding.h"
#include "Tests/Fuzzing/RoundTrip.h"

void kestrove::fuzzing::examine(Input input) {
    const auto json = parseJson(input.bytes());
    if (!json)
        return;
    comesBack(*json, decodeShortcutBinding);
    comesBack(*json, decodeShortcutBindings);
    const auto binding = decodeShortcutBinding(*json);
    if (!binding)
        return;
    const bool needsNoModifier = ShortcutBinding::isFunctionKey(binding->keyCode);
    promise(!binding->isValid() || binding->modifiers != 0 || needsNoModifier,
            "a key without modifiers is no shortcut");
    promise(!binding->display().empty() || binding->characters.empty(), "a binding has a name");
}
