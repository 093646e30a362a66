#include "UI/MenuBarView/MenuBarView.h"

#include <utility>

namespace kestrove {

MenuBarView::MenuBarView(MenuBarViewCollaborators collaborators)
    : m_with(std::move(collaborators))
    , m_scope(m_with.loop) {
    const auto& settings = m_with.settings;
    observe(settings.followMode);
    observe(settings.manualSources);
    observe(settings.hideOutputWindow);
    observe(settings.shortcutBindings);
    const auto& controller = m_with.controller;
    observe(controller.sessionState());
    observe(controller.availableSources());
    observe(controller.unavailableManualSources());
    observe(controller.activeSource());
}

template <class Value>
void MenuBarView::observe(const Published<Value>& field) {
    m_observations.push_back(field.subscribe([this](const Value&) { scheduleChanged(); }));
}

void MenuBarView::scheduleChanged() {
    // Not at once: a value is stored only when all have been told of it.
    if (std::exchange(m_isChangeScheduled, true))
        return;
    m_scope.post([this] {
        m_isChangeScheduled = false;
        m_changed.emit();
    });
}

MenuContent MenuBarView::content() const {
    return menuContent(state());
}

MenuState MenuBarView::state() const {
    const auto& controller = m_with.controller;
    const auto& settings = m_with.settings;
    MenuState state;
    state.session = controller.sessionState().get();
    state.recoveryGuidance = controller.recoveryGuidance();
    state.availableSources = controller.availableSources().get();
    state.unavailableManualSources = controller.unavailableManualSources().get();
    state.activeSource = controller.activeSource().get();
    state.picks = {settings.followMode.get(), settings.manualSources.get()};
    state.hideOutputWindow = settings.hideOutputWindow.get();
    if (m_with.shortcutTexts)
        state.shortcuts = m_with.shortcutTexts();
    state.offers = {.hasPicker = static_cast<bool>(m_with.showSourcePicker),
                    .hasSettings = static_cast<bool>(m_with.openSettings),
                    .hasScreenRecordingPreferences =
                        static_cast<bool>(m_with.openScreenRecordingPreferences)};
    return state;
}

Subscription MenuBarView::onChanged(std::function<void()> callback) {
    return m_changed.subscribe(std::move(callback));
}

void MenuBarView::willOpen() {
    if (m_with.controller.permissionStatus().get() == ScreenRecordingPermission::granted)
        m_with.controller.scheduleSourceRefresh();
}

void MenuBarView::run(MenuCommand command) {
    auto& controller = m_with.controller;
    auto& hideOutputWindow = m_with.settings.hideOutputWindow;
    switch (command) {
    case MenuCommand::start:
        return controller.start();
    case MenuCommand::stop:
        return controller.stop();
    case MenuCommand::openScreenRecordingPreferences:
        return m_with.openScreenRecordingPreferences();
    case MenuCommand::showSourcePicker:
        return m_with.showSourcePicker();
    case MenuCommand::refreshSources:
        return controller.scheduleSourceRefresh();
    case MenuCommand::leaveHiddenMode:
        hideOutputWindow.set(false);
        return m_with.outputWindow.show();
    case MenuCommand::showOutputWindow:
        return m_with.outputWindow.show();
    case MenuCommand::hideOutputWindow:
        return hideOutputWindow.set(true);
    case MenuCommand::openSettings:
        return m_with.openSettings();
    case MenuCommand::openPrivacyPolicy:
        return m_with.openPrivacyPolicy();
    case MenuCommand::quit:
        return m_with.quit();
    }
    std::unreachable();
}

void MenuBarView::choose(FollowMode mode) {
    m_with.settings.followMode.set(mode);
}

void MenuBarView::toggle(const MenuSourceRow& row) {
    m_with.controller.toggleSource(row.source, row.windowOwner);
}

} // namespace kestrove
