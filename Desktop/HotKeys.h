#pragma once

#include "Async/Subscription.h"

#include <cstdint>
#include <expected>
#include <functional>

namespace kestrove {

/// A status of the hot-key service; 0 is success.
using HotKeyStatus = std::int32_t;

/// What the owner calls a hot key: a four-character signature and a number.
struct HotKeyIdentifier {
    std::uint32_t signature = 0;
    std::uint32_t number = 0;

    bool operator==(const HotKeyIdentifier&) const = default;
};

/// The service's own handle of a registered hot key.
using HotKeyReference = std::uint64_t;

/// System-wide hot keys: they reach the program whatever application has the focus.
///
/// Thread: main. Synchronous; the handler comes from the main loop.
/// Lifetime: what is still registered when the service is destroyed is given back.
class HotKeys {
public:
    using Handler = std::function<void(HotKeyIdentifier)>;

    HotKeys() = default;
    HotKeys(const HotKeys&) = delete;
    HotKeys& operator=(const HotKeys&) = delete;
    virtual ~HotKeys() = default;

    /// Told of every press of every registered hot key, once a press however long it is held. Each
    /// handler that is installed is told.
    [[nodiscard]] virtual std::expected<Subscription, HotKeyStatus>
    installHandler(Handler handler) = 0;

    /// `keyCode` names a physical key, `modifiers` are hot-key modifier bits. Fails when another
    /// program or another registration has the combination.
    [[nodiscard]] virtual std::expected<HotKeyReference, HotKeyStatus>
    registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers, HotKeyIdentifier identifier) = 0;

    /// 0, or why the hot key is still registered. `reference` is of a hot key that is registered.
    [[nodiscard]] virtual HotKeyStatus unregisterHotKey(HotKeyReference reference) = 0;
};

} // namespace kestrove
