#pragma once

#include "Async/Signal.h"
#include "Async/TaskScope.h"
#include "Core/AppController/AppController.h"
#include "Core/Settings/AppSettings.h"
#include "UI/MenuBarView/MenuState.h"

#include <functional>
#include <optional>
#include <vector>

namespace kestrove {

/// What the menu works with. All that is referred to outlives it.
struct MenuBarViewCollaborators {
    MainLoop& loop;
    AppSettings& settings;
    AppController& controller;
    OutputWindowControlling& outputWindow;
    /// Asked whenever the content is; empty while there are no shortcuts.
    std::function<MenuShortcutTexts()> shortcutTexts;
    /// Empty on a desktop without such a page.
    std::function<void()> openScreenRecordingPreferences;
    /// Empty while the application has no picker: the menu then offers none.
    std::function<void()> showSourcePicker;
    /// Empty while the application has no settings window: the menu then offers none.
    std::function<void()> openSettings;
    std::function<void()> openPrivacyPolicy;
    std::function<void()> quit;
};

/// The menu, whatever draws it: a view over the settings and the controller. It holds no state of
/// its own, and each thing that it does is one call into the controller, the output window or the
/// settings.
///
/// Thread: main.
class MenuBarView {
public:
    explicit MenuBarView(MenuBarViewCollaborators collaborators);
    MenuBarView(const MenuBarView&) = delete;
    MenuBarView& operator=(const MenuBarView&) = delete;
    ~MenuBarView() = default;

    [[nodiscard]] MenuContent content() const;
    /// What the content is made of.
    [[nodiscard]] MenuState state() const;

    /// The content may have become another one. From the main loop, once for all that changed
    /// together, when what has changed can be read.
    [[nodiscard]] Subscription onChanged(std::function<void()> callback);

    /// The menu is about to be seen: has the sources listed anew, so that it does not offer those
    /// of long ago. Not without the permission, which the listing itself might have the desktop ask
    /// for.
    void willOpen();

    void run(MenuCommand command);
    void choose(FollowMode mode);
    /// A source row was clicked.
    void toggle(const MenuSourceRow& row);

private:
    template <class Value>
    void observe(const Published<Value>& field);
    void scheduleChanged();

    MenuBarViewCollaborators m_with;
    Signal<> m_changed;
    bool m_isChangeScheduled = false;
    std::vector<Subscription> m_observations;
    TaskScope m_scope;
};

} // namespace kestrove
