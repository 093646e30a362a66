#include "Core/Settings/AppSettings.h"

#include "Core/CaptureSource/CaptureSourceCoding.h"
#include "Core/GlobalShortcuts/ShortcutBindingCoding.h"

#include <algorithm>
#include <expected>
#include <set>
#include <string_view>
#include <utility>

namespace kestrove {

namespace {

constexpr std::string_view followModeKey = "kestrove.followMode";
constexpr std::string_view targetFPSKey = "kestrove.targetFPS";
constexpr std::string_view alwaysOnTopKey = "kestrove.alwaysOnTop";
constexpr std::string_view autoStartKey = "kestrove.autoStart";
constexpr std::string_view hideOutputWindowKey = "kestrove.hideOutputWindow";
constexpr std::string_view manualSourcesKey = "kestrove.manualSources";
constexpr std::string_view manualWindowSelectionsKey = "kestrove.manualWindowSelections";
constexpr std::string_view shortcutBindingsKey = "kestrove.shortcutBindings";

constexpr std::int64_t defaultFPS = 30;

FollowMode loadFollowMode(const UserDefaults& defaults) {
    return followModeFromRawValue(defaults.text(followModeKey).value_or(""))
        .value_or(FollowMode::mouse);
}

std::int64_t loadTargetFPS(const UserDefaults& defaults) {
    const auto stored = defaults.integer(targetFPSKey).value_or(0);
    return stored == 0 ? defaultFPS : stored;
}

/// All elements of the array stored under `key`, or none when one of them is malformed.
template <class Element>
std::vector<Element> loadList(const UserDefaults& defaults, std::string_view key,
                              std::expected<Element, DecodingError> (*decode)(const Json&)) {
    const auto data = defaults.data(key);
    const auto json = data ? parseJson(*data) : std::nullopt;
    if (!json || !json->is_array())
        return {};
    std::vector<Element> elements;
    for (const auto& item : *json) {
        auto element = decode(item);
        if (!element)
            return {};
        elements.push_back(std::move(*element));
    }
    return elements;
}

ManualWindowSelections loadSelections(const UserDefaults& defaults) {
    ManualWindowSelections selections;
    for (auto& selection :
         loadList(defaults, manualWindowSelectionsKey, decodeManualWindowSelection)) {
        // The last of several selections of one window wins.
        const auto windowID = selection.windowID;
        selections.insert_or_assign(windowID, std::move(selection));
    }
    return selections;
}

/// The stored bindings over the defaults; one malformed binding drops them all.
ShortcutBindings loadShortcutBindings(const UserDefaults& defaults) {
    auto bindings = defaultShortcutBindings();
    const auto data = defaults.data(shortcutBindingsKey);
    const auto json = data ? parseJson(*data) : std::nullopt;
    auto stored = json ? decodeShortcutBindings(*json) : ShortcutBindings();
    if (!stored)
        return bindings;
    // What was there comes second in a merge of maps.
    stored->merge(bindings);
    return std::move(*stored);
}

/// Leaves what is stored under `key` when the value cannot be encoded.
void store(UserDefaults& defaults, std::string_view key, const Json& value) {
    if (const auto data = serializeJson(value))
        defaults.setData(key, *data);
}

Published<bool>::Stored storeBoolean(UserDefaults& defaults, std::string_view key) {
    return [&defaults, key](bool value) { defaults.setBoolean(key, value); };
}

} // namespace

AppSettings::AppSettings(UserDefaults& userDefaults)
    : m_defaults(userDefaults)
    , followMode(loadFollowMode(m_defaults),
                 [this](FollowMode mode) { m_defaults.setText(followModeKey, rawValue(mode)); })
    , targetFPS(loadTargetFPS(m_defaults),
                [this](std::int64_t fps) { m_defaults.setInteger(targetFPSKey, fps); })
    , alwaysOnTop(m_defaults.boolean(alwaysOnTopKey).value_or(false),
                  storeBoolean(m_defaults, alwaysOnTopKey))
    , autoStart(m_defaults.boolean(autoStartKey).value_or(false),
                storeBoolean(m_defaults, autoStartKey))
    , hideOutputWindow(m_defaults.boolean(hideOutputWindowKey).value_or(false),
                       storeBoolean(m_defaults, hideOutputWindowKey))
    , manualSources(loadList(m_defaults, manualSourcesKey, decodeCaptureSource),
                    [this](const std::vector<CaptureSource>&) { manualSourcesDidChange(); })
    , shortcutBindings(loadShortcutBindings(m_defaults))
    , m_manualWindowSelections(loadSelections(m_defaults)) {}

void AppSettings::toggleManualSource(CaptureSource source,
                                     std::optional<ManualWindowSelection> windowSelection) {
    auto sources = manualSources.get();
    const auto found = std::ranges::find(sources, source);
    if (found != sources.end()) {
        sources.erase(found);
    } else {
        if (windowSelection) {
            const auto windowID = windowSelection->windowID;
            m_manualWindowSelections.insert_or_assign(windowID, std::move(*windowSelection));
        }
        sources.push_back(source);
    }
    manualSources.set(std::move(sources));
}

void AppSettings::removeManualSources(const std::vector<CaptureSource>& removed) {
    auto sources = manualSources.get();
    std::erase_if(sources, [&removed](const CaptureSource& source) {
        return std::ranges::find(removed, source) != removed.end();
    });
    manualSources.set(std::move(sources));
}

void AppSettings::discardPersistedManualWindowsForNewProcess() {
    m_manualWindowSelections.clear();
    auto sources = manualSources.get();
    std::erase_if(sources, [](const CaptureSource& source) { return source.isWindow(); });
    manualSources.set(std::move(sources));
}

void AppSettings::persistManualSources() const {
    Json sources = Json::array();
    for (const auto& source : manualSources.get())
        sources.push_back(encode(source));
    store(m_defaults, manualSourcesKey, sources);

    Json selections = Json::array();
    for (const auto& [windowID, selection] : m_manualWindowSelections)
        selections.push_back(encode(selection));
    store(m_defaults, manualWindowSelectionsKey, selections);
}

void AppSettings::persistShortcutBindings(const ShortcutBindings& bindings) const {
    store(m_defaults, shortcutBindingsKey, encode(bindings));
}

void AppSettings::manualSourcesDidChange() {
    std::set<WindowID> windows;
    for (const auto& source : manualSources.get()) {
        if (source.isWindow())
            windows.insert(source.identifier());
    }
    std::erase_if(m_manualWindowSelections,
                  [&windows](const auto& entry) { return !windows.contains(entry.first); });
    persistManualSources();
}

} // namespace kestrove
