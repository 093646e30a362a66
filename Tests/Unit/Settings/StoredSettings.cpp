#include "Tests/Unit/Settings/StoredSettings.h"

namespace kestrove::test {

namespace {

using Settings = const AppSettings&;

const std::vector<CaptureSource> pickedSources{CaptureSource::display(7), CaptureSource::window(5)};
const ManualWindowSelections pickedWindows{{5, {5, {50, "org.example.editor"}}}};

ShortcutBindings storedBindings() {
    auto bindings = defaultShortcutBindings();
    bindings[ShortcutAction::showPicker] = {3, 256, "f"};
    return bindings;
}

template <Published<bool> AppSettings::* field>
StoredSetting onOff(std::string_view key) {
    return {key,
            "true",
            [](Settings settings) { return (settings.*field).get(); },
            [](Settings settings) { return !(settings.*field).get(); },
            {"True", "\"true\"", "1", "[true]", "hex:01"}};
}

std::vector<StoredSetting> makeSettings() {
    return {
        {"kestrove.followMode",
         "focusedApp",
         [](Settings s) { return s.followMode.get() == FollowMode::focusedApp; },
         [](Settings s) { return s.followMode.get() == FollowMode::mouse; },
         {"FocusedApp", "Manual", "2", "true", "[\"manual\"]", "hex:6d616e75616c"}},
        {"kestrove.targetFPS",
         "45",
         [](Settings s) { return s.targetFPS.get() == 45; },
         [](Settings s) { return s.targetFPS.get() == 30; },
         {"0", "45.0", "\"45\"", "4e1", "+45", "true", "[45]", "hex:2d", "9223372036854775808"}},
        onOff<&AppSettings::alwaysOnTop>("kestrove.alwaysOnTop"),
        onOff<&AppSettings::autoStart>("kestrove.autoStart"),
        onOff<&AppSettings::hideOutputWindow>("kestrove.hideOutputWindow"),
        {"kestrove.manualSources",
         R"([{"display":{"_0":7}},{"window":{"_0":5}}])",
         [](Settings s) { return s.manualSources.get() == pickedSources; },
         [](Settings s) { return s.manualSources.get().empty(); },
         {"text", "7", "true", "{}", "[{}]", "[7]", R"([{"display":{"_0":7}},{"window":{}}])",
          R"("[{\"display\":{\"_0\":7}}]")", "hex:ff"}},
        {"kestrove.manualWindowSelections",
         R"([{"windowID":5,"owner":{"processID":50,"bundleIdentifier":"org.example.editor"}}])",
         [](Settings s) { return s.manualWindowSelections() == pickedWindows; },
         [](Settings s) { return s.manualWindowSelections().empty(); },
         {"text", "7", "true", "{}", "[{}]", R"([{"windowID":"5"}])", "hex:00"}},
        {"kestrove.shortcutBindings",
         R"({"showPicker":{"keyCode":3,"modifiers":256,"characters":"f"}})",
         [](Settings s) { return s.shortcutBindings.get() == storedBindings(); },
         [](Settings s) { return s.shortcutBindings.get() == defaultShortcutBindings(); },
         {"text", "7", "true", "[]", R"({"showPicker":3})", "hex:7b"}},
    };
}

} // namespace

const std::vector<StoredSetting>& storedSettings() {
    static const auto settings = makeSettings();
    return settings;
}

} // namespace kestrove::test
