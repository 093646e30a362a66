#pragma once

#include "Async/TaskScope.h"
#include "Desktop/HotKeys.h"
#include "Platform/Simulated/SimulatedKeyboard.h"

#include <set>

namespace kestrove {

class SimulatedDesktop;

/// Hot keys on the keyboard of a simulated desktop. What is still registered when it goes is given
/// back, as when a program ends.
class SimulatedHotKeys final : public HotKeys {
public:
    explicit SimulatedHotKeys(SimulatedDesktop& desktop);
    ~SimulatedHotKeys() override;

    std::expected<Subscription, HotKeyStatus> installHandler(Handler handler) override;
    std::expected<HotKeyReference, HotKeyStatus>
    registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                   HotKeyIdentifier identifier) override;
    HotKeyStatus unregisterHotKey(HotKeyReference reference) override;

    [[nodiscard]] std::size_t registeredCount() const { return m_references.size(); }
    [[nodiscard]] int registerCallCount() const { return m_registerCallCount; }
    [[nodiscard]] int unregisterCallCount() const { return m_unregisterCallCount; }

private:
    SimulatedDesktop& m_desktop;
    std::set<HotKeyReference> m_references;
    Signal<HotKeyIdentifier> m_pressed;
    int m_registerCallCount = 0;
    int m_unregisterCallCount = 0;
    Subscription m_worldChanges;
    TaskScope m_scope;
};

} // namespace kestrove
