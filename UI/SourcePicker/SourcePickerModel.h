#pragma once

#include "Async/Published.h"
#include "Async/TaskScope.h"
#include "Core/Collaborators/CaptureControlling.h"
#include "Core/SourceLister/SourceLister.h"
#include "Desktop/Application.h"
#include "Desktop/ScreenCapture.h"
#include "Desktop/Screens.h"
#include "Desktop/SystemLog.h"
#include "UI/SourcePicker/SourcePreview.h"

#include <functional>
#include <memory>
#include <vector>

namespace kestrove {

/// What the picker's model asks of the desktop. All that is referred to outlives the model.
struct SourcePickerPlatform {
    MainLoop& loop;
    ScreenCapture& capture;
    Screens& screens;
    const Application& application;
    SystemLog& log;
};

/// The sources that can be picked now, with their thumbnails.
///
/// Thread: main. Lifetime: its tasks are dropped before it goes.
class SourcePickerModel {
public:
    using Previews = std::vector<SourcePreview>;

    /// `excludedWindowIDs` names our own windows and is asked at every refresh.
    SourcePickerModel(SourcePickerPlatform platform,
                      std::function<WindowIDSet()> excludedWindowIDs);
    SourcePickerModel(const SourcePickerModel&) = delete;
    SourcePickerModel& operator=(const SourcePickerModel&) = delete;
    ~SourcePickerModel() = default;

    /// In the order of the lister.
    [[nodiscard]] const Published<Previews>& displays() const { return m_displays; }
    [[nodiscard]] const Published<Previews>& windows() const { return m_windows; }
    /// Whether a refresh runs.
    [[nodiscard]] const Published<bool>& isLoading() const { return m_isLoading; }

    /// Lists the displays and the windows that are on screen now, then takes their thumbnails, all
    /// at the same time; each is published when it is there. Ends when all have been tried. When
    /// the desktop refuses, the previous lists stay. Refreshes may overlap: each publishes what it
    /// gets.
    [[nodiscard]] Task<void> refresh();

private:
    /// One reading of the desktop, and whose thumbnails are still to come.
    struct Reading;

    [[nodiscard]] Task<void> list();
    void beginRefresh();
    void endRefresh();
    void logFailure(const PlatformError& error) const;
    [[nodiscard]] SourceLister::Lists makeLists(const Reading& reading) const;
    [[nodiscard]] Task<void> addThumbnail(CaptureSource source, std::shared_ptr<Reading> reading);
    void publish(CaptureSource source, std::shared_ptr<const StillImage> image);

    SourcePickerPlatform m_platform;
    std::function<WindowIDSet()> m_excludedWindowIDs;
    Published<Previews> m_displays{{}};
    Published<Previews> m_windows{{}};
    Published<bool> m_isLoading{false};
    int m_runningRefreshes = 0;
};

} // namespace kestrove
