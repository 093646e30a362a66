#pragma once

#include "Platform/Linux/Session/MessageBus.h"
#include "Platform/Linux/Session/SessionPresence.h"

#include <string>

namespace kestrove {

/// The screen savers of the session: while one of them is active, the user cannot see the screen,
/// or must unlock it first. Each desktop has its own, under a name of its own; they may come and
/// go.
///
/// Thread: main. Everything it is given outlives it.
class ScreenSavers {
public:
    ScreenSavers(MessageBus& sessionBus, SessionPresence& presence);
    ScreenSavers(const ScreenSavers&) = delete;
    ScreenSavers& operator=(const ScreenSavers&) = delete;

    /// Nothing more will come from the bus.
    void areSilent();

private:
    void watch(const std::string& service);
    void readActive(const std::string& service);
    void setActive(const std::string& service, bool isActive);

    MessageBus& m_bus;
    SessionPresence& m_presence;
};

} // namespace kestrove
