#pragma once

#include "Async/TaskScope.h"
#include "Desktop/SystemLog.h"
#include "Platform/Linux/Session/LoginSession.h"
#include "Platform/Linux/Session/MessageBus.h"
#include "Platform/Linux/Session/ScreenSavers.h"
#include "Platform/Linux/Session/SessionPresence.h"
#include "Platform/Linux/Session/SessionSignals.h"

#include <memory>
#include <string>
#include <vector>

namespace kestrove {

/// Whether the user is at the machine: the session's lock and its seat, from logind and from the
/// screen savers, and the machine's sleep. What was so before the start is told like a change.
///
/// A machine without these services works on; the log says so, once.
///
/// Thread: main. The callbacks come from the main loop. What it is given outlives it.
class UserSession {
public:
    UserSession(MainLoop& loop, DescriptorWatching& watching, SystemLog& log,
                std::string logSubsystem);
    UserSession(const UserSession&) = delete;
    UserSession& operator=(const UserSession&) = delete;
    ~UserSession() = default;

    SessionSignals signals;

private:
    [[nodiscard]] std::unique_ptr<MessageBus> openBus(MessageBus::Kind kind);
    void busLost(MessageBus::Kind kind);
    void say(const std::string& line);

    MainLoop& m_loop;
    DescriptorWatching& m_watching;
    SystemLog& m_log;
    std::string m_logSubsystem;
    SessionPresence m_presence;
    std::unique_ptr<MessageBus> m_systemBus;
    std::unique_ptr<MessageBus> m_sessionBus;
    std::unique_ptr<LoginSession> m_login;
    std::unique_ptr<ScreenSavers> m_screenSavers;
    std::vector<Subscription> m_observations;
    TaskScope m_tasks;
};

} // namespace kestrove
