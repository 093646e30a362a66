#include "Platform/Linux/Session/ScreenSavers.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace kestrove {

namespace {

// Each has its interface under the same name, with GetActive and ActiveChanged, at the path of that
// name.
constexpr std::array services{"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                              "org.xfce.ScreenSaver", "org.cinnamon.ScreenSaver",
                              "org.mate.ScreenSaver"};

std::string pathOf(std::string service) {
    std::ranges::replace(service, '.', '/');
    return "/" + service;
}

} // namespace

ScreenSavers::ScreenSavers(MessageBus& sessionBus, SessionPresence& presence)
    : m_bus(sessionBus)
    , m_presence(presence) {
    for (const auto* const service : services)
        watch(service);
}

void ScreenSavers::areSilent() {
    for (const auto* const service : services)
        m_presence.isSilent(service);
}

void ScreenSavers::watch(const std::string& service) {
    // Whichever path it comes from: KDE has two.
    m_bus.subscribe(fmt::format("type='signal',interface='{}',member='ActiveChanged'", service),
                    [this, service](BusMessage& message) {
                        if (const auto isActive = message.readBoolean())
                            setActive(service, *isActive);
                    });
    m_bus.subscribe(fmt::format("type='signal',sender='org.freedesktop.DBus',"
                                "interface='org.freedesktop.DBus',member='NameOwnerChanged',"
                                "arg0='{}'",
                                service),
                    [this, service](BusMessage& message) {
                        const auto name = message.readText();
                        const auto before = message.readText();
                        const auto after = message.readText();
                        if (!name || !before || !after)
                            return;
                        if (after->empty())
                            m_presence.isSilent(service);
                        else
                            readActive(service);
                    });
    readActive(service);
}

void ScreenSavers::readActive(const std::string& service) {
    m_bus.call({service, pathOf(service), service, "GetActive"}, {},
               [this, service](std::optional<BusMessage> reply) {
                   if (const auto isActive = reply ? reply->readBoolean() : std::nullopt)
                       setActive(service, *isActive);
               });
}

void ScreenSavers::setActive(const std::string& service, bool isActive) {
    if (isActive)
        m_presence.isAway(service);
    else
        m_presence.isHere(service);
}

} // namespace kestrove
