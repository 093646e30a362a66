#include "Core/GlobalShortcuts/HotKeyServiceRegistrar.h"

#include <fmt/format.h>

#include <utility>

namespace kestrove {

namespace {

/// A service that fails without saying why has left out the reference.
HotKeyStatus failure(HotKeyStatus status) {
    return status == 0 ? HotKeyRegistrar::missingReference : status;
}

} // namespace

HotKeyServiceRegistrar::HotKeyServiceRegistrar(MainLoop& loop, HotKeys& hotKeys, SystemLog& log,
                                               std::string logSubsystem)
    : m_hotKeys(hotKeys)
    , m_log(log)
    , m_logSubsystem(std::move(logSubsystem))
    , m_tasks(loop) {}

HotKeyStatus HotKeyServiceRegistrar::installHandler(Delivery delivery) {
    m_delivery = std::move(delivery);
    if (m_handler.isActive())
        return 0;
    // The signature is not compared: whatever hot key the service tells us of is ours.
    auto handler = m_hotKeys.installHandler([this](HotKeyIdentifier pressed) {
        m_tasks.post([this, id = pressed.number] {
            // A copy: the press may replace the delivery.
            if (const auto deliver = m_delivery)
                deliver(id);
        });
    });
    if (!handler) {
        const auto status = failure(handler.error());
        m_log.write(m_logSubsystem, "", LogLevel::error,
                    fmt::format("[kestrove] InstallEventHandler failed: {}", status));
        return status;
    }
    m_handler = std::move(*handler);
    return 0;
}

HotKeyStatus HotKeyServiceRegistrar::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    std::uint32_t id) {
    const auto registered = m_hotKeys.registerHotKey(keyCode, modifiers, {signature, id});
    if (!registered)
        return failure(registered.error());
    m_registrations.insert_or_assign(id, *registered);
    return 0;
}

HotKeyStatus HotKeyServiceRegistrar::unregisterHotKey(std::uint32_t id) {
    const auto found = m_registrations.find(id);
    if (found == m_registrations.end())
        return missingReference;
    const auto status = m_hotKeys.unregisterHotKey(found->second);
    if (status == 0)
        m_registrations.erase(found);
    return status;
}

} // namespace kestrove
