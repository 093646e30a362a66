// A settings file that anybody may have edited: it always makes usable settings, and what is stored
// of them is read back as it was.
#include "Core/Settings/AppSettings.h"
#include "Platform/Linux/DefaultsDocument.h"
#include "Tests/Fuzzing/Promise.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"

#include <algorithm>

namespace kestrove::fuzzing {
namespace {

bool areEqual(const AppSettings& a, const AppSettings& b) {
    return a.followMode.get() == b.followMode.get() && a.targetFPS.get() == b.targetFPS.get() &&
           a.alwaysOnTop.get() == b.alwaysOnTop.get() && a.autoStart.get() == b.autoStart.get() &&
           a.hideOutputWindow.get() == b.hideOutputWindow.get() &&
           a.manualSources.get() == b.manualSources.get() &&
           a.shortcutBindings.get() == b.shortcutBindings.get() &&
           a.manualWindowSelections() == b.manualWindowSelections();
}

using Values = decltype(MemoryUserDefaults::values);

/// What the next run of the program finds, after one that wrote these values into the file.
Values nextRun(DefaultsDocument& file, const Values& values) {
    for (const auto& [key, value] : values)
        file.set(key, value);
    const auto text = file.text();
    auto found = DefaultsDocument(text).values();
    promise(found == values, "every value that is set is read back");
    promise(DefaultsDocument(text).text() == text, "what was written is kept byte for byte");
    return found;
}

} // namespace

void examine(Input input) {
    DefaultsDocument file(input.text());
    MemoryUserDefaults store;
    store.values = file.values();

    AppSettings settings(store);
    promise(settings.shortcutBindings.get().size() == defaultShortcutBindings().size(),
            "every action has a binding");
    settings.persistManualSources();
    settings.persistShortcutBindings(settings.shortcutBindings.get());
    MemoryUserDefaults secondStore;
    secondStore.values = nextRun(file, store.values);
    AppSettings second(secondStore);
    promise(areEqual(settings, second), "the next run has the same settings");

    second.discardPersistedManualWindowsForNewProcess();
    promise(std::ranges::all_of(second.manualSources.get(), &CaptureSource::isDisplay),
            "no window is left of an earlier run");
    MemoryUserDefaults thirdStore;
    thirdStore.values = nextRun(file, secondStore.values);
    promise(areEqual(second, AppSettings(thirdStore)), "nor in the file");
}

} // namespace kestrove::fuzzing
