#pragma once

#include "Async/Signal.h"
#include "Desktop/Screens.h"

namespace kestrove {

/// The screens that a test lists.
class ScriptedScreens final : public Screens {
public:
    std::vector<Screen> screens() override { return list; }
    Subscription onChanged(std::function<void()> callback) override {
        return changed.subscribe(std::move(callback));
    }

    void add(Rect frame, std::optional<DisplayID> displayID, std::string name = "Screen") {
        list.push_back({frame, frame, displayID, std::move(name), 1, list.empty()});
    }

    std::vector<Screen> list;
    Signal<> changed;
};

} // namespace kestrove
