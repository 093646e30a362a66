#pragma once

#include "Async/Signal.h"
#include "Platform/Linux/Session/MessageBus.h"
#include "Platform/Linux/Session/SessionPresence.h"

#include <functional>
#include <string>

namespace kestrove {

/// What logind says of our session: whether it has the seat, whether it is locked, and whether the
/// machine sleeps.
///
/// Lockers set the session's LockedHint, or act on its Lock and Unlock signals, or do neither. A
/// Lock is therefore believed until something says that it is over: an Unlock, a hint that falls, a
/// session that comes to the seat.
///
/// Thread: main. Everything it is given outlives it.
class LoginSession {
public:
    /// `notFound` is told once, when logind does not run or has no session of ours.
    LoginSession(MessageBus& systemBus, SessionPresence& presence, std::function<void()> notFound);
    LoginSession(const LoginSession&) = delete;
    LoginSession& operator=(const LoginSession&) = delete;

    /// Nothing more will come from the bus.
    void isSilent();

    Signal<> aboutToSleep;
    Signal<> wokeUp;

private:
    void findSession();
    void watch(const std::string& sessionPath);
    void readProperties();
    void serviceChanged(bool runs);
    void setActive(bool isActive);
    void setLockedHint(bool isLocked);

    MessageBus& m_bus;
    SessionPresence& m_presence;
    std::function<void()> m_notFound;
    std::string m_path;
};

} // namespace kestrove
