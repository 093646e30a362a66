#pragma once

#include "Async/Signal.h"
#include "Desktop/HotKeys.h"

#include <compare>
#include <cstdint>
#include <deque>
#include <expected>
#include <map>
#include <set>
#include <vector>

namespace kestrove {

class SimulatedDesktop;

/// A key with its hot-key modifier bits.
struct SimulatedKeyCombination {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;

    auto operator<=>(const SimulatedKeyCombination&) const = default;
};

/// The keyboard of a simulated desktop, with who has which hot key. Thread: main.
class SimulatedKeyboard {
public:
    /// What registering a combination that is taken answers.
    static constexpr HotKeyStatus taken = -9878;

    explicit SimulatedKeyboard(SimulatedDesktop& desktop);

    /// Another program takes the combination, or gives it back.
    void takeByOtherProgram(SimulatedKeyCombination combination);
    void giveBackByOtherProgram(SimulatedKeyCombination combination);

    /// A key that is down already repeats, which is no new press.
    void keyDown(SimulatedKeyCombination combination);
    void keyUp(SimulatedKeyCombination combination);
    /// Down and up.
    void press(SimulatedKeyCombination combination);

    /// Statuses that the next calls answer, one a call, instead of doing anything; 0 stands for
    /// doing what was asked.
    std::deque<HotKeyStatus> nextInstallStatuses;
    std::deque<HotKeyStatus> nextRegisterStatuses;
    std::deque<HotKeyStatus> nextUnregisterStatuses;

    /// The hot keys of this program, in no order that means anything.
    [[nodiscard]] std::vector<SimulatedKeyCombination> registered() const;
    /// Whether the system has ever refused to remove this hot key of the program.
    [[nodiscard]] bool wasStuck(SimulatedKeyCombination combination) const {
        return m_stuck.contains(combination);
    }
    [[nodiscard]] bool isTakenByOther(SimulatedKeyCombination combination) const {
        return m_takenByOthers.contains(combination);
    }

    // For the hot-key adapter.
    std::expected<HotKeyReference, HotKeyStatus> add(SimulatedKeyCombination combination,
                                                     HotKeyIdentifier identifier);
    void remove(HotKeyReference reference);
    void refuseToRemove(HotKeyReference reference) {
        m_stuck.insert(m_hotKeys.at(reference).combination);
    }
    [[nodiscard]] bool isRegistered(HotKeyReference reference) const;
    [[nodiscard]] Subscription onPressed(std::function<void(const HotKeyIdentifier&)> callback);

private:
    struct HotKey {
        SimulatedKeyCombination combination;
        HotKeyIdentifier identifier;
    };

    SimulatedDesktop& m_desktop;
    std::set<SimulatedKeyCombination> m_takenByOthers;
    std::set<SimulatedKeyCombination> m_stuck;
    std::set<SimulatedKeyCombination> m_down;
    std::map<HotKeyReference, HotKey> m_hotKeys;
    HotKeyReference m_nextReference = 1;
    Signal<HotKeyIdentifier> m_pressed;
};

} // namespace kestrove
