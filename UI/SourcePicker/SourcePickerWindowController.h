#pragma once

#include "Core/AppController/AppController.h"
#include "Core/Settings/AppSettings.h"
#include "UI/SourcePicker/SourcePickerModel.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace kestrove {

class SourcePickerView;

/// The picker's window: made once, hidden when the user turns to something else, and shown again
/// with fresh lists.
///
/// Thread: main. Lifetime: all that it is given outlives it.
class SourcePickerWindowController {
public:
    struct Surroundings {
        AppSettings& settings;
        AppController& controller;
        Application& application;
        SourcePickerPlatform platform;
        /// Gives the window the keyboard though another application has it; may be empty where Qt's
        /// own way is enough.
        std::function<void(QWidget& window)> bringToFront;
    };

    /// `excludedWindowIDs` names our own windows and is asked at every refresh.
    SourcePickerWindowController(Surroundings surroundings,
                                 std::function<WindowIDSet()> excludedWindowIDs);
    SourcePickerWindowController(const SourcePickerWindowController&) = delete;
    SourcePickerWindowController& operator=(const SourcePickerWindowController&) = delete;
    ~SourcePickerWindowController();

    /// In front of everything, with the keyboard, and refreshing.
    void show();

    [[nodiscard]] QWidget& window() { return *m_window; }
    [[nodiscard]] SourcePickerModel& model() { return m_model; }

private:
    Surroundings m_with;
    SourcePickerModel m_model;
    std::unique_ptr<QWidget> m_window;
    SourcePickerView* m_view;
};

} // namespace kestrove
