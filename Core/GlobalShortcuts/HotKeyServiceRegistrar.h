#pragma once

#include "Async/TaskScope.h"
#include "Core/GlobalShortcuts/HotKeyRegistrar.h"
#include "Desktop/SystemLog.h"

#include <map>
#include <string>

namespace kestrove {

/// The registrar over the desktop's hot-key service: keeps the service's reference of every hot key
/// under our number for it, and hands presses on in a turn of the main loop of their own, so that
/// the service never waits for what an action does.
///
/// Destroying it unregisters nothing: what is registered belongs to the service, whose end gives it
/// back.
///
/// Thread: main. Lifetime: what it is given outlives it.
class HotKeyServiceRegistrar final : public HotKeyRegistrar {
public:
    /// The signature half of every identifier that this application registers: "kstv".
    static constexpr std::uint32_t signature = 0x6B737476;

    HotKeyServiceRegistrar(MainLoop& loop, HotKeys& hotKeys, SystemLog& log,
                           std::string logSubsystem);

    /// The service is asked for a handler until it has given one; later calls only replace the
    /// delivery. A failure is logged.
    HotKeyStatus installHandler(Delivery delivery) override;
    HotKeyStatus registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                std::uint32_t id) override;
    HotKeyStatus unregisterHotKey(std::uint32_t id) override;

private:
    HotKeys& m_hotKeys;
    SystemLog& m_log;
    std::string m_logSubsystem;
    Delivery m_delivery;
    std::map<std::uint32_t, HotKeyReference> m_registrations;
    Subscription m_handler;
    TaskScope m_tasks;
};

} // namespace kestrove
