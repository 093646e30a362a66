#include "Platform/Linux/Session/LoginSession.h"

#include <fmt/format.h>
#include <utility>

namespace kestrove {

namespace {

// https://www.freedesktop.org/software/systemd/man/org.freedesktop.login1.html
constexpr const char* service = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";

// The witnesses of the presence.
constexpr const char* seat = "logind: seat";
constexpr const char* hint = "logind: LockedHint";
constexpr const char* lock = "logind: Lock";

std::string signalRule(std::string_view interface, std::string_view member, std::string_view path) {
    return fmt::format("type='signal',sender='{}',interface='{}',member='{}',path='{}'", service,
                       interface, member, path);
}

} // namespace

LoginSession::LoginSession(MessageBus& systemBus, SessionPresence& presence,
                           std::function<void()> notFound)
    : m_bus(systemBus)
    , m_presence(presence)
    , m_notFound(std::move(notFound)) {
    m_bus.subscribe(signalRule(managerInterface, "PrepareForSleep", managerPath),
                    [this](BusMessage& message) {
                        const auto begins = message.readBoolean();
                        if (begins)
                            (*begins ? aboutToSleep : wokeUp).emit();
                    });
    m_bus.subscribe(fmt::format("type='signal',sender='org.freedesktop.DBus',"
                                "interface='org.freedesktop.DBus',member='NameOwnerChanged',"
                                "arg0='{}'",
                                service),
                    [this](BusMessage& message) {
                        const auto name = message.readText();
                        const auto before = message.readText();
                        const auto after = message.readText();
                        if (name && before && after)
                            serviceChanged(!after->empty());
                    });
    findSession();
}

void LoginSession::findSession() {
    // "auto": the session that we run in, or else the one that the user's display is in; a program
    // that a user service started belongs to none.
    m_bus.call({service, managerPath, managerInterface, "GetSession"}, {"auto"},
               [this](std::optional<BusMessage> reply) {
                   const auto path = reply ? reply->readText() : std::nullopt;
                   if (path)
                       watch(*path);
                   else if (m_path.empty() && m_notFound)
                       std::exchange(m_notFound, {})();
               });
}

void LoginSession::watch(const std::string& sessionPath) {
    m_notFound = {};
    if (std::exchange(m_path, sessionPath) != sessionPath) {
        m_bus.subscribe(signalRule(sessionInterface, "Lock", sessionPath), [this](BusMessage&) {
            m_presence.isAway(lock, SessionPresence::Until::anyIsTakenBack);
        });
        m_bus.subscribe(signalRule(sessionInterface, "Unlock", sessionPath),
                        [this](BusMessage&) { m_presence.isHere(lock); });
        m_bus.subscribe(
            signalRule("org.freedesktop.DBus.Properties", "PropertiesChanged", sessionPath),
            [this](BusMessage&) { readProperties(); });
    }
    readProperties();
}

void LoginSession::readProperties() {
    const auto read = [this](const char* name, void (LoginSession::*set)(bool)) {
        m_bus.call({service, m_path, "org.freedesktop.DBus.Properties", "Get"},
                   {sessionInterface, name}, [this, set](std::optional<BusMessage> reply) {
                       if (const auto value = reply ? reply->readBooleanVariant() : std::nullopt)
                           (this->*set)(*value);
                   });
    };
    read("Active", &LoginSession::setActive);
    read("LockedHint", &LoginSession::setLockedHint);
}

void LoginSession::setActive(bool isActive) {
    if (isActive)
        m_presence.isHere(seat);
    else
        m_presence.isAway(seat);
}

void LoginSession::setLockedHint(bool isLocked) {
    if (isLocked)
        m_presence.isAway(hint);
    else
        m_presence.isHere(hint);
}

void LoginSession::serviceChanged(bool runs) {
    if (runs)
        findSession();
    else
        isSilent();
}

void LoginSession::isSilent() {
    for (const auto* const witness : {seat, hint, lock})
        m_presence.isSilent(witness);
}

} // namespace kestrove
