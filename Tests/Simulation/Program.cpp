#include "Tests/Simulation/Program.h"

#include <utility>

namespace kestrove::simulation {

Program::Program(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_worldChanges(desktop.events().changed.subscribe([this] { m_windowsChanged.raise(); }))
    , m_session(sessionDesktop(), sessionViews(), m_diagnostics)
    , m_menu(menuCollaborators())
    , m_tasks(desktop.loop()) {}

SessionDesktop Program::sessionDesktop() {
    return {
        .loop = m_desktop.loop(),
        .log = m_log,
        .defaults = m_userDefaults,
        .application = m_application,
        .screenCapture = m_screenCapture,
        .screens = m_screens,
        .pointer = m_pointer,
        .windowServer = m_windowServer,
        .workspace = m_workspace,
        .hotKeys = m_hotKeys,
        .recordingAccess = m_access,
        .currentProcess = m_desktop.ownProcess(),
    };
}

SessionViews Program::sessionViews() {
    auto layer = std::make_unique<SimulatedDisplayLayer>(m_desktop);
    m_displayLayer = layer.get();
    auto overlay = std::make_unique<SimulatedOverlayWindow>(m_desktop);
    m_overlay = overlay.get();
    return {
        .displayLayer = std::move(layer),
        .containerView = m_containerView,
        .makeOutputWindow = [this](const Rect& content,
                                   WindowStyle) -> std::unique_ptr<OutputWindow> {
            auto window = std::make_unique<SimulatedOutputWindow>(m_desktop, content);
            m_window = window.get();
            return window;
        },
        .overlayWindow = std::move(overlay),
        .onWindowsChanged =
            [this](std::function<void()> callback) {
                return m_windowsChanged.subscribe(std::move(callback));
            },
        .runModalAlert = [](const WarningAlert&) -> std::size_t { return 1; },
        .showSourcePicker = [this] { showSourcePicker(); },
        .hasTray = [] { return false; },
        .openPanelWindow = [this] { m_menu.willOpen(); },
    };
}

MenuBarViewCollaborators Program::menuCollaborators() {
    return {
        .loop = m_desktop.loop(),
        .settings = settings(),
        .controller = controller(),
        .outputWindow = m_session.outputWindow(),
        .shortcutTexts = [] { return MenuShortcutTexts(); },
        .openScreenRecordingPreferences = {},
        .showSourcePicker = [this] { controller().showSourcePicker(); },
        .openSettings = [] {},
        .openPrivacyPolicy = [] {},
        .quit = [this] { m_session.delegate().terminate(); },
    };
}

void Program::showSourcePicker() {
    if (!m_picker)
        m_picker.emplace(SourcePickerPlatform{m_desktop.loop(), m_screenCapture, m_screens,
                                              m_application, m_log},
                         [this] { return controller().selfCaptureWindowIDs(); });
    m_tasks.launch(m_picker->refresh());
}

ShortcutBindings Program::shownShortcuts() {
    letLastEditEnd();
    return settings().shortcutBindings.get();
}

void Program::letLastEditEnd() {
    while (m_isEditInItsTurn && m_desktop.loop().runOne()) {
    }
}

void Program::editShortcuts(ShortcutBindings edited) {
    letLastEditEnd();
    ++m_shortcutEditCount;
    m_isEditInItsTurn = true;
    settings().shortcutBindings.set(std::move(edited));
    m_tasks.post([this] { m_isEditInItsTurn = false; });
}

SimulatedFramePointer Program::seen() const {
    return m_containerView.showsContent() ? m_displayLayer->visible() : nullptr;
}

} // namespace kestrove::simulation
