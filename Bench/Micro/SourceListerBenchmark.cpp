// What a refresh of the source lists costs, which runs every five seconds while sharing.

#include "Core/SourceLister/SourceLister.h"

#include <benchmark/benchmark.h>
#include <string>

namespace kestrove {

namespace {

class SilentLog final : public SystemLog {
public:
    void write(std::string_view, std::string_view, LogLevel, std::string_view) override {}
};

ShareableContent makeContent(int windows) {
    ShareableContent content;
    content.displays.push_back({.displayID = 1, .width = 1920, .height = 1080});
    for (int index = 0; index < windows; ++index) {
        CapturableWindow window;
        window.windowID = static_cast<WindowID>(index + 100);
        window.title = "Window " + std::to_string(index);
        window.frame = Rect{10.0 * index, 20, 800, 600};
        window.isOnScreen = true;
        window.owningApplication =
            CapturableApplication{"org.example.app" + std::to_string(index % 10),
                                  "App " + std::to_string(index % 10), 1000 + index % 10};
        content.windows.push_back(window);
    }
    return content;
}

void makeSnapshotOfWindows(benchmark::State& state) {
    const auto content = makeContent(static_cast<int>(state.range(0)));
    SilentLog log;
    const SourceLister::Context context{
        .screens = {}, .ownBundleIdentifier = "dev.example.ours", .log = log};
    for (auto _ : state)
        benchmark::DoNotOptimize(SourceLister::makeSnapshot(content, {100}, context));
}
BENCHMARK(makeSnapshotOfWindows)->Arg(5)->Arg(50)->Arg(200);

} // namespace

} // namespace kestrove
