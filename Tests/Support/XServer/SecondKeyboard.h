#pragma once

#include <cstdint>
#include <vector>

#include <xcb/xcb.h>

namespace kestrove::test {

/// The keyboard that an Xvfb has beside the one that XTEST types on: as on a laptop with another
/// keyboard at its side, what both type goes to the same focus, and each has a keymap of its own.
/// It is plugged in at first.
class SecondKeyboard {
public:
    explicit SecondKeyboard(xcb_connection_t* connection);

    /// The server's number for it, as `setxkbmap -device` and `xkbcomp -i` want it.
    [[nodiscard]] std::uint8_t device() const { return m_device; }

    /// It is pulled out, with whatever keys are held on it, and plugged in again.
    void pull();
    void plug();

    /// Like those of KeyPresses.h. A keyboard that is pulled out types nothing.
    void keyDown(xcb_keycode_t key);
    void keyUp(xcb_keycode_t key);
    void pressTogether(const std::vector<xcb_keycode_t>& keys);

private:
    enum class Direction : std::uint8_t { down, up };

    void send(Direction direction, xcb_keycode_t key);
    void setEnabled(bool isEnabled);

    xcb_connection_t* m_connection;
    std::uint8_t m_firstEvent = 0;
    std::uint8_t m_device = 0;
};

} // namespace kestrove::test
