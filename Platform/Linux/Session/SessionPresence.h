#pragma once

#include "Async/Signal.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace kestrove {

/// Whether the user is at the session, from what several witnesses say of it. Lockers differ in
/// whom they tell: some tell logind, some only a screen saver's interface, so the user is away as
/// long as one of them says so, and nobody is told twice.
///
/// A witness that dies while it says that the user is away proves nothing: from then on it is
/// unclear, until that witness comes back and says otherwise, or another takes its own word back.
/// Who never said that the user is away has nothing to add.
///
/// Thread: main. It must not be destroyed by its subscribers.
class SessionPresence {
public:
    enum class State : std::uint8_t { here, away, unclear };

    [[nodiscard]] State state() const { return m_state; }

    enum class Until : std::uint8_t {
        itIsTakenBack,
        /// Or until another witness takes its own word back: who asks for a lock may never tell
        /// that it is over.
        anyIsTakenBack,
    };
    void isAway(const std::string& witness, Until until = Until::itIsTakenBack);
    void isHere(const std::string& witness);
    /// The witness has gone.
    void isSilent(const std::string& witness);

    Signal<> wentAway;
    Signal<> cameBack;
    Signal<> becameUnclear;

private:
    void become(State state);

    State m_state = State::here;
    std::map<std::string, Until> m_away;
    /// Those that died while they said so.
    std::set<std::string> m_silent;
};

} // namespace kestrove
