#include "Core/AppController/AppController.h"

namespace kestrove {

void AppController::showSourcePicker() {
    if (m_with.showSourcePicker)
        m_with.showSourcePicker();
}

ShortcutHandlers AppController::globalShortcutHandlers() {
    return {
        {ShortcutAction::startStop, [this] { startOrStop(); }},
        {ShortcutAction::showPicker, [this] { showSourcePicker(); }},
        {ShortcutAction::showWindow, [this] { showOutputWindow(); }},
        {ShortcutAction::hideToggle, [this] { toggleHiddenMode(); }},
    };
}

void AppController::startOrStop() {
    // A session on its way to its end is not started over by a second press.
    if (isOnOrStopping())
        stop();
    else
        start();
}

void AppController::showOutputWindow() {
    if (m_with.settings.hideOutputWindow.get())
        m_with.settings.hideOutputWindow.set(false);
    m_with.outputWindow.show();
}

void AppController::toggleHiddenMode() {
    const bool isHidden = !m_with.settings.hideOutputWindow.get();
    m_with.settings.hideOutputWindow.set(isHidden);
    if (!isHidden)
        m_with.outputWindow.show();
}

} // namespace kestrove
