#pragma once

#include "Desktop/HotKeys.h"

#include <cstdint>
#include <functional>

namespace kestrove {

/// What the registry sees of the system's hot keys: three operations that answer a status. 0 is
/// success; every other status is the platform's own and is passed on as it is.
///
/// Thread: main.
class HotKeyRegistrar {
public:
    /// Told the identifier of a hot key that was pressed, from the main loop.
    using Delivery = std::function<void(std::uint32_t id)>;

    /// Of an operation that finds no hot key where there should be one: the platform's code for a
    /// wrong parameter.
    static constexpr HotKeyStatus missingReference = -50;

    HotKeyRegistrar() = default;
    HotKeyRegistrar(const HotKeyRegistrar&) = delete;
    HotKeyRegistrar& operator=(const HotKeyRegistrar&) = delete;
    virtual ~HotKeyRegistrar() = default;

    /// From now on presses go to `delivery`, and no longer to an earlier one.
    [[nodiscard]] virtual HotKeyStatus installHandler(Delivery delivery) = 0;

    /// `id` is of no hot key that is registered.
    [[nodiscard]] virtual HotKeyStatus
    registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t id) = 0;

    /// `missingReference` when there is no such hot key. After any other failure it is still
    /// registered and may be tried again.
    [[nodiscard]] virtual HotKeyStatus unregisterHotKey(std::uint32_t id) = 0;
};

} // namespace kestrove
