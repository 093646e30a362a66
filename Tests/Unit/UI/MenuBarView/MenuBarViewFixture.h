#pragma once

#include "Tests/Unit/Core/AppController/ControllerBench.h"
#include "UI/MenuBarView/MenuBarView.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kestrove {

/// The menu over a real controller on the bench.
class MenuBarViewFixture : public testing::Test {
protected:
    MenuBarViewFixture() {
        bench.create();
        view = std::make_unique<MenuBarView>(MenuBarViewCollaborators{
            .loop = bench.loop,
            .settings = *bench.settings,
            .controller = *bench.controller,
            .outputWindow = bench.window,
            .shortcutTexts = [this] { return shortcuts; },
            .openScreenRecordingPreferences = [this] { done.emplace_back("preferences"); },
            .showSourcePicker = [this] { done.emplace_back("picker"); },
            .openSettings = [this] { done.emplace_back("settings"); },
            .openPrivacyPolicy = [this] { done.emplace_back("privacy"); },
            .quit = [this] { done.emplace_back("quit"); },
        });
    }

    void run(MenuCommand command) {
        view->run(command);
        bench.settle();
    }

    using Texts = std::vector<std::string>;

    ControllerBench bench;
    MenuShortcutTexts shortcuts;
    Texts done;
    std::unique_ptr<MenuBarView> view;
};

} // namespace kestrove
