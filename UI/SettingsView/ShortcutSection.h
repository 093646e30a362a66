#pragma once

#include "Core/Settings/AppSettings.h"
#include "UI/SettingsView/FormWidgets.h"
#include "UI/SettingsView/ShortcutStatus.h"
#include "UI/SettingsView/StatusLabel.h"
#include "UI/ShortcutRecorder/ShortcutRecorder.h"

#include <map>

namespace kestrove {

/// The section of the shortcuts: a row for each action, what the registry says of all of them, and
/// the way back to the defaults. Thread: main. `settings` outlives it.
class ShortcutSection final {
public:
    ShortcutSection(AppSettings& settings, const RecorderKeyboard& keyboard);

    /// To be put into a layout, which owns it then.
    [[nodiscard]] QWidget* widget() const { return m_form.box; }
    void render(const ShortcutRegistryState& state);

private:
    struct Row {
        ShortcutRecorder* recorder;
        StatusLabel* status;
    };

    [[nodiscard]] Row makeRow(ShortcutAction action, const RecorderKeyboard& keyboard);
    void capture(ShortcutAction action, const ShortcutBinding& binding);

    AppSettings& m_settings;
    FormSection m_form;
    std::map<ShortcutAction, Row> m_rows;
    StatusLabel* m_registration;
    QLabel* m_summary;
    QLabel* m_note;
};

} // namespace kestrove
