#include "Tests/Support/MessageBus/ServedSession.h"

#include <cstdlib>

namespace kestrove::test {

ServedSession::NamedBuses::NamedBuses() {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", system.address().c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", session.address().c_str(), 1);
}

ServedSession::ServedSession(MainLoop& loop, DescriptorWatching& watching, SessionSignals& signals)
    : logind(m_buses.system, watching)
    , screenSaver(m_buses.session, watching, "org.gnome.ScreenSaver")
    , m_session(loop, watching, log, "dev.kestrove")
    , m_forwarding{
          m_session.signals.resigned.subscribe([&signals] { signals.resigned.emit(); }),
          m_session.signals.becameActive.subscribe([&signals] { signals.becameActive.emit(); }),
          m_session.signals.slept.subscribe([&signals] { signals.slept.emit(); }),
          m_session.signals.woke.subscribe([&signals] { signals.woke.emit(); })} {}

} // namespace kestrove::test
