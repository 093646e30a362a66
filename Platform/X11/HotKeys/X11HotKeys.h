#pragma once

#include "Async/Signal.h"
#include "Desktop/HotKeys.h"
#include "Platform/X11/HotKeys/KeyGrabs.h"
#include "Platform/X11/HotKeys/KeyboardChanges.h"
#include "Platform/X11/HotKeys/ModifierMap.h"

#include <map>
#include <set>
#include <xcb/xinput.h>

namespace kestrove::x11 {

/// Hot keys by passive grabs on the root window (KeyGrabs). One hot key is one grab for every state
/// of the locks (Caps Lock, Num Lock, Scroll Lock); either it has all of them or none. Grabs follow
/// the keyboard: when its modifiers move to other bits, or the connection was lost, they are made
/// anew.
///
/// While another program has grabbed the whole keyboard (a menu, a screen locker), the server
/// tells nobody else of keys.
///
/// Thread: main. Lifetime: not longer than the connection.
class X11HotKeys final : public kestrove::HotKeys {
public:
    /// Somebody has the combination already.
    static constexpr HotKeyStatus taken = -9878;
    /// No key of a keyboard has this key code.
    static constexpr HotKeyStatus noSuchKey = -9879;
    /// A bit is none of a hot-key modifier: without it the combination would be another one, in the
    /// worst case a bare letter.
    static constexpr HotKeyStatus noSuchModifier = -50;
    /// There is no connection to the server now.
    static constexpr HotKeyStatus notConnected = -9868;

    explicit X11HotKeys(Connection& connection);
    ~X11HotKeys() override;

    std::expected<Subscription, HotKeyStatus> installHandler(Handler handler) override;
    std::expected<HotKeyReference, HotKeyStatus>
    registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                   HotKeyIdentifier identifier) override;
    HotKeyStatus unregisterHotKey(HotKeyReference reference) override;

private:
    struct HotKey {
        HotKeyIdentifier identifier;
        xcb_keycode_t code = 0;
        std::uint32_t hotKeyModifiers = 0;
        /// What is grabbed for it, without the locks.
        std::uint16_t modifiers = 0;
        std::set<std::uint16_t> grabbed;
    };

    [[nodiscard]] std::set<std::uint16_t> wantedGrabs(const HotKey& hotKey) const;
    void followKeyboard();
    void grabAnew();
    void onEvent(const xcb_generic_event_t& event);
    void onPress(const xcb_input_key_press_event_t& press);

    Connection& m_connection;
    KeyGrabs m_grabs;
    ModifierMap m_modifierMap;
    std::map<HotKeyReference, HotKey> m_hotKeys;
    HotKeyReference m_nextReference = 1;
    Signal<HotKeyIdentifier> m_pressed;
    KeyboardChanges m_keyboardChanges;
    Subscription m_changed;
    Subscription m_events;
    Subscription m_opened;
};

} // namespace kestrove::x11
