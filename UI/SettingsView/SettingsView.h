#pragma once

#include "Async/TaskScope.h"
#include "Core/GlobalShortcuts/GlobalShortcuts.h"
#include "Core/Settings/AppSettings.h"
#include "UI/SettingsView/FrameRateStepper.h"
#include "UI/SettingsView/IndicatorStyle.h"
#include "UI/SettingsView/ShortcutSection.h"
#include "UI/ShortcutRecorder/ShortcutRecorder.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QLabel>
#include <QWidget>

#include <functional>
#include <vector>

namespace kestrove {

/// What the settings window works with. All that is referred to outlives it.
struct SettingsViewCollaborators {
    MainLoop& loop;
    AppSettings& settings;
    const GlobalShortcuts& globalShortcuts;
    RecorderKeyboard keyboard;
};

/// The content of the settings window: a form of four sections that edits the settings and shows
/// what the registry of shortcuts says of itself. It holds nothing of its own and never calls the
/// registry; every edit is a write of a setting.
///
/// Thread: main.
class SettingsView final : public QWidget {
public:
    explicit SettingsView(SettingsViewCollaborators collaborators, QWidget* parent = nullptr);

private:
    [[nodiscard]] QWidget* makeFollowSection();
    [[nodiscard]] QWidget* makeOutputSection();
    [[nodiscard]] QWidget* makeStartSection();
    [[nodiscard]] QCheckBox* makeToggle(std::string_view label, Published<bool>& setting);
    void observe();
    template <class Value>
    void observe(const Published<Value>& field);
    void scheduleRender();
    void render();
    void renderMode();

    AppSettings& m_settings;
    const GlobalShortcuts& m_globalShortcuts;
    IndicatorStyle* m_indicators;
    QButtonGroup m_modes;
    QLabel m_frameRate;
    FrameRateStepper m_frameRateStepper;
    std::vector<std::function<void()>> m_renderToggles;
    ShortcutSection m_shortcuts;
    bool m_isRenderScheduled = false;
    std::vector<Subscription> m_observations;
    TaskScope m_tasks;
};

} // namespace kestrove
