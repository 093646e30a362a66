#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include "Util/ScreenGeometry.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace kestrove {

namespace {

constexpr Seconds debounce(0.15);

std::string nameOf(ScreenRecordingPermission permission) {
    constexpr const char* names[] = {"notDetermined", "granted", "denied", "revoked"};
    return names[static_cast<int>(permission)];
}

std::string nameOf(CaptureRecoveryReason reason) {
    constexpr const char* names[] = {"sourceUnavailable", "switchFailed", "streamStopped"};
    return names[static_cast<int>(reason)];
}

} // namespace

std::string nameOf(CaptureSessionState state) {
    constexpr const char* names[] = {"permissionRequired", "recoveryRequired", "stopped",
                                     "starting",           "running",          "switching",
                                     "waitingForSource",   "stopping"};
    const std::string name = names[static_cast<int>(state.kind())];
    if (const auto permission = state.permission())
        return name + "(" + nameOf(*permission) + ")";
    if (const auto reason = state.recoveryReason())
        return name + "(" + nameOf(*reason) + ")";
    return name;
}

std::ostream& operator<<(std::ostream& out, CaptureSessionState state) {
    return out << nameOf(state);
}

std::ostream& operator<<(std::ostream& out, CaptureSource source) {
    return out << nameOf(source);
}

ControllerBench::ControllerBench() {
    screens.add({0, 0, 1920, 1080}, 1);
    screens.add({1920, 0, 1920, 1080}, 2);
    pointer.point = {100, 100};
    lister.addDisplay(1);
    lister.addDisplay(2);
    lister.addWindow(5, editor);
    lister.addWindow(6, editor);
}

AppController& ControllerBench::create() {
    settings = std::make_unique<AppSettings>(defaults);
    tracker = std::make_unique<ActiveDisplayTracker>(followedDesktop(), settings->followMode.get(),
                                                     debounce);
    resolver = std::make_unique<ActiveSourceResolver>(followedDesktop(), debounce);
    controller = std::make_unique<AppController>(AppControllerCollaborators{
        .mainLoop = loop,
        .settings = *settings,
        .renderer = renderer,
        .captureEngine = engine,
        .displayTracker = *tracker,
        .sourceResolver = *resolver,
        .outputContainer = container,
        .outputWindow = window,
        .activeOverlay = &overlay,
        .sourceLister = lister,
        .windowExistenceChecker = existence,
        .sessionLockState = lockState,
        .sourceRefreshScheduler = scheduler,
        .permissionAccess = permissionAccess(),
        .displayIDUnderMouse =
            [this] { return ScreenGeometry::displayIDUnderMouse(pointer, screens); },
        .systemLog = log,
        .logSubsystem = "dev.kestrove",
        .diagnosticOutput = diagnostics,
        .globalShortcuts = &shortcuts,
        .showSourcePicker = [this] { calls.add("show picker"); },
    });
    watchPublishedFields();
    settle();
    (void)events();
    return *controller;
}

AppController& ControllerBench::createManual(const std::vector<CaptureSource>& sources) {
    create();
    settings->followMode.set(FollowMode::manual);
    for (const auto source : sources) {
        const auto owner = source.isWindow() ? std::optional(editor) : std::nullopt;
        controller->toggleSource(source, owner);
    }
    settle();
    (void)events();
    return *controller;
}

ScreenRecordingPermissionAccess ControllerBench::permissionAccess() {
    return {.ensure =
                [this] {
                    calls.add("ensure permission");
                    if (const auto happens = std::exchange(whileAsked, {}))
                        happens();
                    return permission;
                },
            .current = [this] { return permission; },
            .presentAlert =
                [this](ScreenRecordingPermission told) { calls.add("alert " + nameOf(told)); },
            .openPreferences = [] {}};
}

void ControllerBench::watchPublishedFields() {
    m_watching.clear();
    m_watching.push_back(controller->sessionState().subscribe(
        [this](CaptureSessionState state) { calls.add("state " + nameOf(state)); }));
    m_watching.push_back(
        controller->activeSource().subscribe([this](const std::optional<CaptureSource>& source) {
            calls.add("active " + (source ? nameOf(*source) : "none"));
        }));
    m_watching.push_back(controller->permissionStatus().subscribe(
        [this](ScreenRecordingPermission status) { calls.add("permission " + nameOf(status)); }));
    m_watching.push_back(controller->availableSources().subscribe(
        [this](const SourceLister::Lists&) { calls.add("available"); }));
    m_watching.push_back(controller->unavailableManualSources().subscribe(
        [this](const CaptureSourceSet&) { calls.add("unavailable"); }));
}

void ControllerBench::startAndRun() {
    controller->start();
    settle();
    (void)events();
}

void ControllerBench::pointAt(DisplayID display) {
    pointer.point = {display == 1 ? 100.0 : 2000.0, 100.0};
    pointer.globalMoved.emit();
    loop.advance(debounce);
}

std::vector<std::string> ControllerBench::events() {
    auto taken = calls.take();
    std::erase_if(taken, [](const std::string& call) {
        return call == "pointer location" || call == "frontmost application" ||
               call.starts_with("window list");
    });
    return taken;
}

std::vector<std::string> ControllerBench::reasons() const {
    std::vector<std::string> found;
    for (const auto& line : log.lines) {
        const auto at = line.text.find("reason=");
        if (line.category == "source-resolution" && at != std::string::npos)
            found.push_back(line.text.substr(at + 7));
    }
    return found;
}

} // namespace kestrove
