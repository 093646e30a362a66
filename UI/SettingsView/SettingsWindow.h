#pragma once

#include "UI/SettingsView/SettingsView.h"

#include <QPointer>
#include <QWidget>

#include <functional>

namespace kestrove {

/// The one settings window: made when it is opened, brought to the front when it is opened again,
/// and gone when it is closed. All state lives in the settings and in the registry.
///
/// Thread: main.
class SettingsWindow {
public:
    /// `bringToFront` is told the window that was shown, for desktops that need more than Qt's own
    /// way; may be empty.
    SettingsWindow(SettingsViewCollaborators collaborators,
                   std::function<void(QWidget& window)> bringToFront);
    SettingsWindow(const SettingsWindow&) = delete;
    SettingsWindow& operator=(const SettingsWindow&) = delete;
    ~SettingsWindow();

    void open();
    /// Null while it is closed.
    [[nodiscard]] QWidget* widget() const { return m_widget; }

private:
    SettingsViewCollaborators m_with;
    std::function<void(QWidget&)> m_bringToFront;
    QPointer<QWidget> m_widget;
};

} // namespace kestrove
