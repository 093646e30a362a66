// What the user does, with the program and with the keyboard.
#include "Tests/Simulation/World.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace kestrove::simulation {

namespace {

/// Few, so that they collide.
SimulatedKeyCombination someCombination(std::uint32_t number) {
    constexpr std::array<std::uint32_t, 6> keyCodes{1, 4, 13, 35, 0, 2};
    constexpr std::array modifiers{HotKeyModifier::control | HotKeyModifier::command,
                                   HotKeyModifier::option | HotKeyModifier::shift,
                                   HotKeyModifier::control | HotKeyModifier::command};
    return {pick(keyCodes, number), pick(modifiers, number >> 4U)};
}

} // namespace

void World::toggleSource(const Step& step) {
    const auto& lists = m_program->controller().availableSources().get();
    auto offered = lists.displays;
    offered.insert(offered.end(), lists.windows.begin(), lists.windows.end());
    if (offered.empty())
        return;
    const auto& chosen = pick(offered, step.a);
    m_program->controller().toggleSource(chosen.source, chosen.windowOwner);
}

void World::applyByHand(const Step& step) {
    constexpr std::array modes{FollowMode::mouse, FollowMode::focusedApp, FollowMode::manual};
    auto& settings = m_program->settings();
    auto* const window = m_program->window();
    switch (step.kind) {
    case StepKind::start:
        m_program->controller().start();
        return;
    case StepKind::stop:
        m_program->controller().stop();
        // Impatient, and then of another mind.
        if (step.a % 3 == 0) {
            m_program->controller().stop();
            runOperations(step.b % 5);
        }
        if (step.a % 6 == 0)
            m_program->controller().start();
        return;
    case StepKind::setFollowMode:
        settings.followMode.set(pick(modes, step.a));
        return;
    case StepKind::toggleSource:
        toggleSource(step);
        return;
    case StepKind::setManualSources: {
        auto sources = settings.manualSources.get();
        if (!sources.empty())
            sources.resize(1 + step.a % sources.size(), sources.front());
        settings.manualSources.set(std::move(sources));
        return;
    }
    case StepKind::setFramesPerSecond:
        settings.targetFPS.set(1 + step.a % 90);
        return;
    case StepKind::toggleHidden:
        settings.hideOutputWindow.set(!settings.hideOutputWindow.get());
        return;
    case StepKind::toggleAlwaysOnTop:
        settings.alwaysOnTop.set(!settings.alwaysOnTop.get());
        return;
    case StepKind::refresh:
        m_program->controller().scheduleSourceRefresh();
        return;
    case StepKind::resizeOutput:
        if (window)
            window->resizeByHand({step.a % 500 * 1.0, 50, 500.0 + step.b % 900, 400});
        return;
    case StepKind::miniaturizeOutput:
        if (window)
            window->miniaturize();
        return;
    case StepKind::openMenu:
    case StepKind::runMenuCommand:
    case StepKind::clickInMenu:
        applyToMenu(step);
        return;
    case StepKind::openPicker:
        m_program->controller().showSourcePicker();
        return;
    case StepKind::pickInPicker:
        pickInPicker(step);
        return;
    case StepKind::editShortcut:
    case StepKind::restoreShortcuts:
    case StepKind::pressHotKey:
    case StepKind::takeOrGiveBackHotKey:
    case StepKind::refuseHotKeys:
        applyToHotKeys(step);
        return;
    case StepKind::slowQueues:
        m_loop.setDelayOfQueues(step.a % 3 == 0 ? Seconds(0) : Seconds(step.b % 300 / 1000.0));
        return;
    case StepKind::corruptSettingsAndRestart: {
        m_checkers.reset();
        m_program.reset();
        constexpr std::array keys{"kestrove.followMode",    "kestrove.targetFPS",
                                  "kestrove.manualSources", "kestrove.manualWindowSelections",
                                  "kestrove.autoStart",     "kestrove.shortcutBindings"};
        m_desktop.defaults().setValue(pick(keys, step.a), std::string("\xff{[corrupt"));
        restart();
        return;
    }
    default:
        restart();
        return;
    }
}

void World::applyToMenu(const Step& step) {
    auto& menu = m_program->menu();
    if (step.kind == StepKind::openMenu) {
        menu.willOpen();
        return;
    }
    const auto content = menu.content();
    if (step.kind == StepKind::clickInMenu) {
        auto rows = content.sources.displays.rows;
        const auto& windows = content.sources.windows.rows;
        rows.insert(rows.end(), windows.begin(), windows.end());
        if (step.b % 3 == 0 || rows.empty())
            menu.choose(pick(content.sources.followModes, step.a).mode);
        else
            menu.toggle(pick(rows, step.a));
        return;
    }
    std::vector<MenuButton> buttons{content.session, content.sources.refresh, content.quit};
    buttons.insert(buttons.end(), content.outputWindow.begin(), content.outputWindow.end());
    if (content.picker)
        buttons.push_back(*content.picker);
    if (content.recovery)
        buttons.push_back(content.recovery->retry);
    const auto& button = pick(buttons, step.a);
    if (!button.isEnabled)
        return;
    menu.run(button.command);
    if (button.command == MenuCommand::quit) {
        runOperations(step.b % 8);
        restart();
    }
}

void World::pickInPicker(const Step& step) {
    const auto& picker = m_program->picker();
    if (!picker)
        return;
    auto previews = picker->displays().get();
    const auto& windows = picker->windows().get();
    previews.insert(previews.end(), windows.begin(), windows.end());
    if (previews.empty())
        return;
    const auto& info = pick(previews, step.a).info;
    m_program->controller().toggleSource(info.source, info.windowOwner);
}

void World::applyToHotKeys(const Step& step) {
    auto& keyboard = m_desktop.keyboard();
    switch (step.kind) {
    case StepKind::editShortcut: {
        auto edited = m_program->shownShortcuts();
        const auto [keyCode, modifiers] = someCombination(step.b);
        // Now and then one that cannot be a shortcut.
        edited[pick(allShortcutActions, step.a)] = {keyCode, step.a % 11 == 0 ? 0 : modifiers, "x"};
        m_program->editShortcuts(std::move(edited));
        return;
    }
    case StepKind::restoreShortcuts:
        m_program->editShortcuts(GlobalShortcuts::defaultBindings());
        return;
    case StepKind::pressHotKey: {
        const auto registered = keyboard.registered();
        if (!registered.empty())
            keyboard.press(pick(registered, step.a));
        return;
    }
    case StepKind::takeOrGiveBackHotKey: {
        const auto combination = someCombination(step.b);
        if (keyboard.isTakenByOther(combination))
            keyboard.giveBackByOtherProgram(combination);
        else
            keyboard.takeByOtherProgram(combination);
        return;
    }
    default: {
        constexpr HotKeyStatus refused = -9868;
        auto& statuses = step.a % 3 == 0   ? keyboard.nextUnregisterStatuses
                         : step.a % 3 == 1 ? keyboard.nextRegisterStatuses
                                           : keyboard.nextInstallStatuses;
        for (std::uint32_t call = 0; call <= step.b % 3; ++call)
            statuses.push_back((step.b >> call) % 2 ? refused : 0);
        return;
    }
    }
}

void World::useHotKeysInPeace() {
    auto& keyboard = m_desktop.keyboard();
    keyboard.nextInstallStatuses.clear();
    keyboard.nextRegisterStatuses.clear();
    keyboard.nextUnregisterStatuses.clear();
    for (std::uint32_t number = 0; number < 0x100; ++number) {
        const auto combination = someCombination(number);
        if (keyboard.isTakenByOther(combination))
            keyboard.giveBackByOtherProgram(combination);
    }
    // Two edits: one of them is a change. The last one is not what is read when nothing is stored.
    m_program->editShortcuts(GlobalShortcuts::defaultBindings());
    runUntilIdle();
    auto bindings = GlobalShortcuts::defaultBindings();
    bindings[ShortcutAction::hideToggle].keyCode = 38;
    m_program->editShortcuts(bindings);
    runUntilIdle();
}

} // namespace kestrove::simulation
