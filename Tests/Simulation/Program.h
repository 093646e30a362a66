#pragma once

#include "App/KestroveSession.h"
#include "Async/TaskScope.h"
#include "Platform/Simulated/MergedNotice.h"
#include "Platform/Simulated/SimulatedApplication.h"
#include "Platform/Simulated/SimulatedDisplayLayer.h"
#include "Platform/Simulated/SimulatedHotKeys.h"
#include "Platform/Simulated/SimulatedPointer.h"
#include "Platform/Simulated/SimulatedScreenCapture.h"
#include "Platform/Simulated/SimulatedScreenRecordingAccess.h"
#include "Platform/Simulated/SimulatedScreens.h"
#include "Platform/Simulated/SimulatedSystemLog.h"
#include "Platform/Simulated/SimulatedUserDefaults.h"
#include "Platform/Simulated/SimulatedWindowServer.h"
#include "Platform/Simulated/SimulatedWorkspace.h"
#include "Tests/Simulation/SimulatedOutputWindow.h"
#include "Tests/Simulation/SimulatedOverlayWindow.h"
#include "UI/MenuBarView/MenuBarView.h"
#include "UI/SourcePicker/SourcePickerModel.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrove::simulation {

/// Keeps the lines that a developer would see.
class KeptDiagnostics final : public DiagnosticOutput {
public:
    void writeLine(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

/// One run of the program on a simulated desktop: the application's own session, with its menu and
/// the picker's model, over simulated adapters and windows. The desktop, with what is stored,
/// outlives it.
class Program {
public:
    explicit Program(SimulatedDesktop& desktop);

    /// What happens when the last thing to do at the start is done.
    void didFinishLaunching() { m_session.delegate().applicationDidFinishLaunching(); }

    [[nodiscard]] AppSettings& settings() { return m_session.settings(); }
    [[nodiscard]] AppController& controller() { return m_session.controller(); }
    [[nodiscard]] GlobalShortcuts& globalShortcuts() { return m_session.globalShortcuts(); }
    [[nodiscard]] bool isRefreshScheduled() const {
        return m_session.refreshScheduler().isScheduled();
    }
    [[nodiscard]] MenuBarView& menu() { return m_menu; }
    /// Absent until it has been opened.
    [[nodiscard]] const std::optional<SourcePickerModel>& picker() const { return m_picker; }
    [[nodiscard]] SimulatedScreenRecordingAccess& access() { return m_access; }
    [[nodiscard]] SimulatedDisplayLayer& displayLayer() const { return *m_displayLayer; }
    [[nodiscard]] SimulatedOutputWindow* window() const { return m_window; }
    [[nodiscard]] const SimulatedOverlayWindow& overlay() const { return *m_overlay; }
    /// What a viewer of the call sees in the output: null is the placeholder or black.
    [[nodiscard]] SimulatedFramePointer seen() const;

    /// What the user sees in the settings window before the next edit.
    [[nodiscard]] ShortcutBindings shownShortcuts();
    /// The user has recorded shortcuts in the settings window. Nobody does so twice in one turn of
    /// the main loop: what the last edit queued runs first.
    void editShortcuts(ShortcutBindings edited);
    [[nodiscard]] int shortcutEditCount() const { return m_shortcutEditCount; }

private:
    [[nodiscard]] SessionDesktop sessionDesktop();
    [[nodiscard]] SessionViews sessionViews();
    [[nodiscard]] MenuBarViewCollaborators menuCollaborators();
    void showSourcePicker();
    void letLastEditEnd();

    SimulatedDesktop& m_desktop;
    SimulatedScreenCapture m_screenCapture{m_desktop};
    SimulatedWindowServer m_windowServer{m_desktop};
    SimulatedWorkspace m_workspace{m_desktop};
    SimulatedScreens m_screens{m_desktop};
    SimulatedPointer m_pointer{m_desktop};
    SimulatedUserDefaults m_userDefaults{m_desktop};
    SimulatedApplication m_application{m_desktop};
    SimulatedHotKeys m_hotKeys{m_desktop};
    SimulatedScreenRecordingAccess m_access{m_desktop};
    SimulatedSystemLog m_log;
    KeptDiagnostics m_diagnostics;
    MergedNotice m_windowsChanged{m_desktop.loop()};
    Subscription m_worldChanges;
    SimulatedContainerView m_containerView{m_desktop};
    SimulatedDisplayLayer* m_displayLayer = nullptr;
    SimulatedOutputWindow* m_window = nullptr;
    SimulatedOverlayWindow* m_overlay = nullptr;
    int m_shortcutEditCount = 0;
    bool m_isEditInItsTurn = false;
    KestroveSession m_session;
    MenuBarView m_menu;
    std::optional<SourcePickerModel> m_picker;
    TaskScope m_tasks;
};

} // namespace kestrove::simulation
