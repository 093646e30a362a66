#pragma once

#include "Core/AppController/ShortcutSettingsCoordinator.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedHotKeyRegistrar.h"
#include "UI/SettingsView/SettingsWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrove {

inline constexpr auto shortcutsKey = "kestrove.shortcutBindings";

/// The settings window over settings in memory and a keyboard of the test's.
class SettingsWindowTest : public testing::Test {
protected:
    void open() {
        settings.emplace(defaults);
        shortcuts.emplace(std::make_unique<ScriptedHotKeyRegistrar>(keyboard), log, "");
        ShortcutHandlers handlers;
        for (const auto action : allShortcutActions)
            handlers.emplace(action, [] {});
        coordinator.emplace(loop, *settings, *shortcuts, handlers);
        window.emplace(SettingsViewCollaborators{loop, *settings, *shortcuts, recorderKeyboard()},
                       [this](QWidget&) { ++broughtToFront; });
        window->open();
    }
    RecorderKeyboard recorderKeyboard() {
        return {
            .keyCode = [](std::uint32_t scanCode) -> std::optional<std::uint32_t> {
                constexpr std::uint32_t aModifier = 500;
                return scanCode == aModifier ? std::nullopt : std::optional(scanCode);
            },
            .characters = [](std::uint32_t keyCode) { return keyCode == 1 ? "s" : "x"; },
            .announce = [this](const QString& text) { announced.push_back(text.toStdString()); }};
    }
    QWidget& widget() { return *window->widget(); }
    void settle() {
        loop.runUntilIdle();
        QApplication::processEvents();
    }

    std::vector<std::string> texts() {
        std::vector<std::string> found;
        for (const auto* const label : widget().findChildren<QLabel*>()) {
            if (label->isVisible() && !label->text().isEmpty())
                found.push_back(label->text().toStdString());
        }
        return found;
    }
    bool shows(const std::string& text) { return std::ranges::count(texts(), text) > 0; }
    QAbstractButton& button(const std::string& text) {
        for (auto* const each : widget().findChildren<QAbstractButton*>()) {
            if (each->text().toStdString() == text)
                return *each;
        }
        ADD_FAILURE() << "no " << text;
        std::abort();
    }
    /// Of the action of this number.
    ShortcutRecorder& recorder(std::size_t number) {
        std::vector<ShortcutRecorder*> found;
        for (auto* const each : widget().findChildren<QWidget*>()) {
            if (auto* const one = dynamic_cast<ShortcutRecorder*>(each))
                found.push_back(one);
        }
        EXPECT_EQ(found.size(), 4U);
        return *found.at(number);
    }
    static void press(QWidget& target, std::uint32_t keyCode, Qt::KeyboardModifiers modifiers,
                      int qtKey = 0) {
        QKeyEvent down(QEvent::KeyPress, qtKey, modifiers, keyCode, 0, 0);
        QApplication::sendEvent(&target, &down);
        QKeyEvent up(QEvent::KeyRelease, qtKey, modifiers, keyCode, 0, 0);
        QApplication::sendEvent(&target, &up);
    }
    void record(std::size_t row, std::uint32_t keyCode, Qt::KeyboardModifiers modifiers) {
        recorder(row).performPress();
        press(recorder(row), keyCode, modifiers);
        settle();
    }

    SimulatedMainLoop loop;
    MemoryUserDefaults defaults;
    RecordingLog log;
    ScriptedKeyboard keyboard;
    std::vector<std::string> announced;
    int broughtToFront = 0;
    std::optional<AppSettings> settings;
    std::optional<GlobalShortcuts> shortcuts;
    std::optional<ShortcutSettingsCoordinator> coordinator;
    std::optional<SettingsWindow> window;
};

} // namespace kestrove
