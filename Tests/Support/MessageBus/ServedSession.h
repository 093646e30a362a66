#pragma once

#include "Platform/Linux/Session/UserSession.h"
#include "Tests/Support/MessageBus/MockService.h"
#include "Tests/Support/MessageBus/PrivateBus.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"

#include <array>

namespace kestrove::test {

/// A user's session with logind and a screen saver, which are mocks on buses of their own, and the
/// real adapters to them, which tell `signals`. The environment names the buses from then on.
class ServedSession {
public:
    ServedSession(MainLoop& loop, DescriptorWatching& watching, SessionSignals& signals);

private:
    /// The adapters find the buses when they are made.
    struct NamedBuses {
        NamedBuses();
        PrivateBus system;
        PrivateBus session;
    };
    NamedBuses m_buses;

public:
    MockLogind logind;
    MockScreenSaver screenSaver;
    RecordingLog log;

private:
    UserSession m_session;
    std::array<Subscription, 4> m_forwarding;
};

} // namespace kestrove::test
