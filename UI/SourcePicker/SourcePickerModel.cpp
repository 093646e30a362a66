#include "UI/SourcePicker/SourcePickerModel.h"

#include "Async/Completion.h"
#include "UI/SourcePicker/Thumbnail.h"

#include <algorithm>
#include <utility>
#include <variant>

#include <fmt/format.h>

namespace kestrove {

struct SourcePickerModel::Reading {
    Reading(MainLoop& loop, ShareableContent readContent, WindowIDSet ownWindows)
        : content(std::move(readContent))
        , excluded(std::move(ownWindows))
        , allTried(loop) {}

    void thumbnailWasTried() {
        if (--untried == 0)
            allTried.complete({});
    }

    ShareableContent content;
    WindowIDSet excluded;
    std::size_t untried = 0;
    Completion<std::monostate> allTried;
};

namespace {

SourcePickerModel::Previews previews(const std::vector<CaptureSourceInfo>& infos) {
    SourcePickerModel::Previews result;
    for (const auto& info : infos)
        result.push_back({info.source, info});
    return result;
}

} // namespace

SourcePickerModel::SourcePickerModel(SourcePickerPlatform platform,
                                     std::function<WindowIDSet()> excludedWindowIDs)
    : m_platform(platform)
    , m_excludedWindowIDs(std::move(excludedWindowIDs)) {}

void SourcePickerModel::beginRefresh() {
    if (++m_runningRefreshes == 1)
        m_isLoading.set(true);
}

void SourcePickerModel::endRefresh() {
    if (--m_runningRefreshes == 0)
        m_isLoading.set(false);
}

Task<void> SourcePickerModel::refresh() {
    beginRefresh();
    co_await list();
    endRefresh();
}

Task<void> SourcePickerModel::list() {
    auto content = co_await m_platform.capture.shareableContent(DesktopWindows::excluded,
                                                                WindowsListed::onScreenOnly);
    if (!content) {
        logFailure(content.error());
        co_return;
    }
    // Our windows are asked for only now: some may have appeared while the desktop was read.
    const auto reading =
        std::make_shared<Reading>(m_platform.loop, std::move(*content), m_excludedWindowIDs());
    const auto lists = makeLists(*reading);
    m_displays.set(previews(lists.displays));
    m_windows.set(previews(lists.windows));

    reading->untried = lists.displays.size() + lists.windows.size();
    if (reading->untried == 0)
        co_return;
    // Dropped together with this task.
    TaskScope children(m_platform.loop);
    for (const auto* const infos : {&lists.displays, &lists.windows}) {
        for (const auto& info : *infos)
            children.launch(addThumbnail(info.source, reading));
    }
    co_await reading->allTried;
}

void SourcePickerModel::logFailure(const PlatformError& error) const {
    m_platform.log.write(m_platform.application.bundleIdentifier().value_or(""), "",
                         LogLevel::standard,
                         fmt::format("[kestrove] picker refresh failed (domain={}, code={})",
                                     error.domain, error.code));
}

SourceLister::Lists SourcePickerModel::makeLists(const Reading& reading) const {
    const SourceLister::Context context{m_platform.screens.screens(),
                                        m_platform.application.bundleIdentifier(), m_platform.log};
    return SourceLister::makeLists(reading.content, reading.excluded, context);
}

Task<void> SourcePickerModel::addThumbnail(CaptureSource source, std::shared_ptr<Reading> reading) {
    const auto request = thumbnailRequest(source, reading->content, reading->excluded);
    if (request) {
        auto image =
            co_await m_platform.capture.captureImage(request->filter, request->configuration);
        if (image)
            publish(source, std::make_shared<const StillImage>(std::move(*image)));
    }
    reading->thumbnailWasTried();
}

void SourcePickerModel::publish(CaptureSource source, std::shared_ptr<const StillImage> image) {
    for (auto* const list : {&m_displays, &m_windows}) {
        auto changed = list->get();
        const auto found = std::ranges::find(changed, source, &SourcePreview::id);
        if (found == changed.end())
            continue;
        found->image = std::move(image);
        list->set(std::move(changed));
        return;
    }
}

} // namespace kestrove
