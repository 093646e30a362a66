#pragma once

#include "Async/Subscription.h"
#include "Platform/Linux/DescriptorWatching.h"
#include "Tests/Support/MessageBus/PrivateBus.h"

#include <string>

struct sd_bus;

namespace kestrove::test {

/// A connection of another program to a bus, under a well-known name, served by the test's loop.
/// Destroying it is the end of that program.
class MockService {
public:
    MockService(const PrivateBus& bus, DescriptorWatching& watching, const std::string& name);
    ~MockService();
    MockService(const MockService&) = delete;
    MockService& operator=(const MockService&) = delete;

protected:
    [[nodiscard]] sd_bus* bus() const { return m_bus; }
    /// Answers what has come in the meantime. To be called when everything is offered that the
    /// service has: what came during its making wakes nobody any more.
    void serve();
    /// Sends what is queued.
    void flush() const;

private:
    sd_bus* m_bus = nullptr;
    Subscription m_readable;
};

/// logind with one session, ours.
class MockLogind final : public MockService {
public:
    struct State {
        bool isActive = true;
        bool hasLockedHint = false;
    };
    MockLogind(const PrivateBus& bus, DescriptorWatching& watching);
    MockLogind(const PrivateBus& bus, DescriptorWatching& watching, State initial);

    void setActive(bool isActive);
    void setLockedHint(bool isLocked);
    void sendLock();
    void sendUnlock();
    void sendPrepareForSleep(bool begins);

    // What its vtables read.
    State state;

private:
    void tellChanged(const char* property);
};

/// A screen saver, by the name of its service.
class MockScreenSaver final : public MockService {
public:
    MockScreenSaver(const PrivateBus& bus, DescriptorWatching& watching, std::string name,
                    bool startsActive = false);

    void setActive(bool isActive);

    bool isActive;
    /// How often somebody has asked whether it is active.
    int questionCount = 0;

private:
    std::string m_name;
    std::string m_path;
};

} // namespace kestrove::test
