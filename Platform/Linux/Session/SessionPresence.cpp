#include "Platform/Linux/Session/SessionPresence.h"

namespace kestrove {

void SessionPresence::isAway(const std::string& witness, Until until) {
    m_away.insert_or_assign(witness, until);
    become(State::away);
}

void SessionPresence::isHere(const std::string& witness) {
    const auto takenBack = m_away.erase(witness) + m_silent.erase(witness);
    if (takenBack == 0)
        return;
    std::erase_if(m_away, [](const auto& other) { return other.second == Until::anyIsTakenBack; });
    if (!m_away.empty())
        return;
    m_silent.clear();
    become(State::here);
}

void SessionPresence::isSilent(const std::string& witness) {
    if (m_away.erase(witness) == 0)
        return;
    m_silent.insert(witness);
    if (m_away.empty())
        become(State::unclear);
}

void SessionPresence::become(State state) {
    if (m_state == state)
        return;
    m_state = state;
    switch (state) {
    case State::here:
        cameBack.emit();
        return;
    case State::away:
        wentAway.emit();
        return;
    case State::unclear:
        becameUnclear.emit();
        return;
    }
}

} // namespace kestrove
