#include "Platform/Linux/Session/UserSession.h"

#include <fmt/format.h>
#include <utility>

namespace kestrove {

namespace {

const char* nameOf(MessageBus::Kind kind) {
    return kind == MessageBus::Kind::system ? "system" : "session";
}

} // namespace

UserSession::UserSession(MainLoop& loop, DescriptorWatching& watching, SystemLog& log,
                         std::string logSubsystem)
    : m_loop(loop)
    , m_watching(watching)
    , m_log(log)
    , m_logSubsystem(std::move(logSubsystem))
    , m_tasks(loop) {
    m_observations.push_back(m_presence.wentAway.subscribe([this] { signals.resigned.emit(); }));
    m_observations.push_back(
        m_presence.cameBack.subscribe([this] { signals.becameActive.emit(); }));
    m_observations.push_back(m_presence.becameUnclear.subscribe([this] { signals.woke.emit(); }));
    m_systemBus = openBus(MessageBus::Kind::system);
    if (m_systemBus) {
        m_login = std::make_unique<LoginSession>(*m_systemBus, m_presence, [this] {
            say("logind does not know this session: its lock and sleep are not noticed");
        });
        m_observations.push_back(m_login->aboutToSleep.subscribe([this] { signals.slept.emit(); }));
        m_observations.push_back(m_login->wokeUp.subscribe([this] { signals.woke.emit(); }));
    }
    m_sessionBus = openBus(MessageBus::Kind::session);
    if (m_sessionBus)
        m_screenSavers = std::make_unique<ScreenSavers>(*m_sessionBus, m_presence);
}

std::unique_ptr<MessageBus> UserSession::openBus(MessageBus::Kind kind) {
    auto bus = MessageBus::open(kind, m_loop, m_watching);
    if (!bus) {
        say(fmt::format("no D-Bus {} bus: locks that are told there are not noticed ({})",
                        nameOf(kind), bus.error().description));
        return nullptr;
    }
    m_observations.push_back((*bus)->lost.subscribe([this, kind] { busLost(kind); }));
    return std::move(*bus);
}

void UserSession::busLost(MessageBus::Kind kind) {
    say(fmt::format("the D-Bus {} bus has gone: locks that are told there are not noticed",
                    nameOf(kind)));
    // Later: this may be inside a handler of the bus.
    m_tasks.post([this, kind] {
        if (kind == MessageBus::Kind::system)
            m_login->isSilent();
        else
            m_screenSavers->areSilent();
    });
}

void UserSession::say(const std::string& line) {
    m_log.write(m_logSubsystem, "session", LogLevel::standard, line);
}

} // namespace kestrove
