#pragma once

#include "Tests/Support/XServer/XServer.h"

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace kestrove::test {

/// Key codes of the server, as every X server on Linux has them.
namespace ServerKey {
inline constexpr xcb_keycode_t control = 37;
inline constexpr xcb_keycode_t shift = 50;
inline constexpr xcb_keycode_t alt = 64;
inline constexpr xcb_keycode_t super = 133;
inline constexpr xcb_keycode_t capsLock = 66;
inline constexpr xcb_keycode_t numLock = 77;
inline constexpr xcb_keycode_t tab = 23;
inline constexpr xcb_keycode_t returnKey = 36;
inline constexpr xcb_keycode_t escape = 9;
inline constexpr xcb_keycode_t space = 65;
inline constexpr xcb_keycode_t q = 24;
inline constexpr xcb_keycode_t s = 39;
inline constexpr xcb_keycode_t d = 40;
inline constexpr xcb_keycode_t f = 41;
inline constexpr xcb_keycode_t h = 43;
inline constexpr xcb_keycode_t p = 33;
inline constexpr xcb_keycode_t w = 25;
inline constexpr xcb_keycode_t f4 = 70;
inline constexpr xcb_keycode_t f5 = 71;
inline constexpr xcb_keycode_t up = 111;
inline constexpr xcb_keycode_t left = 113;
inline constexpr xcb_keycode_t right = 114;
inline constexpr xcb_keycode_t down = 116;
} // namespace ServerKey

/// A device sends them (XTEST), and the server has worked through it when these return.
void keyDown(xcb_connection_t* connection, xcb_keycode_t key);
void keyUp(xcb_connection_t* connection, xcb_keycode_t key);

/// The keys go down in this order, and up in the other one.
void pressTogether(xcb_connection_t* connection, const std::vector<xcb_keycode_t>& keys);

/// Whether an event tells whoever has grabbed a key, in the way of XInput, of a press of it or of a
/// repetition.
[[nodiscard]] bool isGrabbedKeyPress(const xcb_generic_event_t& event);

} // namespace kestrove::test
