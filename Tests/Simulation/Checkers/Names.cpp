#include "Tests/Simulation/Checkers/Names.h"

#include <fmt/format.h>

namespace kestrove::simulation {

using Kind = CaptureSessionState::Kind;

bool isOneOf(Kind kind, std::initializer_list<Kind> kinds) {
    return contains(kinds, kind);
}

bool mayCapture(CaptureSessionState state) {
    return state.isActive() || state.kind() == Kind::stopping;
}

const char* nameOf(CaptureSessionState state) {
    switch (state.kind()) {
    case Kind::permissionRequired:
        return "permissionRequired";
    case Kind::recoveryRequired:
        return "recoveryRequired";
    case Kind::stopped:
        return "stopped";
    case Kind::starting:
        return "starting";
    case Kind::running:
        return "running";
    case Kind::switching:
        return "switching";
    case Kind::waitingForSource:
        return "waitingForSource";
    case Kind::stopping:
        return "stopping";
    }
    return "?";
}

std::string nameOf(const std::optional<CaptureSource>& source) {
    return source ? fmt::format("{} {}", source->isDisplay() ? "display" : "window",
                                source->identifier())
                  : "none";
}

CaptureSource sourceOf(const ContentFilter& filter) {
    if (const auto* const display = std::get_if<DisplayFilter>(&filter))
        return CaptureSource::display(display->displayID);
    return CaptureSource::window(std::get<WindowFilter>(filter).windowID);
}

bool canBeCaptured(const SimulatedDesktop& desktop, CaptureSource source) {
    if (source.isDisplay())
        return desktop.findDisplay(source.identifier()) != nullptr;
    const auto* const window = desktop.findWindow(source.identifier());
    return window && window->isOnScreen;
}

} // namespace kestrove::simulation
