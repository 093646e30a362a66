#include "Platform/Simulated/SimulatedKeyboard.h"

#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <algorithm>
#include <utility>

namespace kestrove {

SimulatedKeyboard::SimulatedKeyboard(SimulatedDesktop& desktop)
    : m_desktop(desktop) {}

void SimulatedKeyboard::takeByOtherProgram(SimulatedKeyCombination combination) {
    m_desktop.requireMainThread("takeByOtherProgram");
    if (!m_takenByOthers.insert(combination).second)
        abortOnMisuse("a combination taken twice");
}

void SimulatedKeyboard::giveBackByOtherProgram(SimulatedKeyCombination combination) {
    m_desktop.requireMainThread("giveBackByOtherProgram");
    if (m_takenByOthers.erase(combination) == 0)
        abortOnMisuse("giving back a combination that was not taken");
}

void SimulatedKeyboard::keyDown(SimulatedKeyCombination combination) {
    m_desktop.requireMainThread("keyDown");
    if (!m_down.insert(combination).second)
        return;
    const auto pressed = std::ranges::find_if(
        m_hotKeys, [&](const auto& each) { return each.second.combination == combination; });
    if (pressed != m_hotKeys.end())
        m_pressed.emit(HotKeyIdentifier(pressed->second.identifier));
}

void SimulatedKeyboard::keyUp(SimulatedKeyCombination combination) {
    m_desktop.requireMainThread("keyUp");
    if (m_down.erase(combination) == 0)
        abortOnMisuse("releasing a key that is not down");
}

void SimulatedKeyboard::press(SimulatedKeyCombination combination) {
    keyDown(combination);
    keyUp(combination);
}

std::vector<SimulatedKeyCombination> SimulatedKeyboard::registered() const {
    std::vector<SimulatedKeyCombination> combinations;
    for (const auto& [reference, hotKey] : m_hotKeys)
        combinations.push_back(hotKey.combination);
    return combinations;
}

std::expected<HotKeyReference, HotKeyStatus>
SimulatedKeyboard::add(SimulatedKeyCombination combination, HotKeyIdentifier identifier) {
    const auto isOurs = std::ranges::any_of(
        m_hotKeys, [&](const auto& each) { return each.second.combination == combination; });
    if (isOurs || m_takenByOthers.contains(combination))
        return std::unexpected(taken);
    const auto reference = m_nextReference++;
    m_hotKeys.emplace(reference, HotKey{combination, identifier});
    return reference;
}

void SimulatedKeyboard::remove(HotKeyReference reference) {
    if (m_hotKeys.erase(reference) == 0)
        abortOnMisuse("unregistering a hot key that is not registered");
}

bool SimulatedKeyboard::isRegistered(HotKeyReference reference) const {
    return m_hotKeys.contains(reference);
}

Subscription SimulatedKeyboard::onPressed(std::function<void(const HotKeyIdentifier&)> callback) {
    return m_pressed.subscribe(std::move(callback));
}

} // namespace kestrove
