#include "Platform/X11/HotKeys/KeyGrabs.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <utility>
#include <vector>
#include <xcb/xinput.h>

namespace kestrove::x11 {

std::set<std::uint16_t> KeyGrabs::grab(xcb_keycode_t code, const std::set<std::uint16_t>& states) {
    const auto old = grabOld(code, states);
    // The server asks the grabs that were made last first: this one is to be told of presses.
    auto grabbed = grabNew(code, old);
    std::set<std::uint16_t> useless;
    std::ranges::set_difference(old, grabbed, std::inserter(useless, useless.end()));
    releaseOld(code, useless);
    return grabbed;
}

void KeyGrabs::release(xcb_keycode_t code, const std::set<std::uint16_t>& states) {
    const std::vector<std::uint32_t> modifiers(states.begin(), states.end());
    xcb_input_xi_passive_ungrab_device(m_connection.get(), m_connection.root(), code,
                                       XCB_INPUT_DEVICE_ALL_MASTER,
                                       static_cast<std::uint16_t>(modifiers.size()),
                                       XCB_INPUT_GRAB_TYPE_KEYCODE, modifiers.data());
    releaseOld(code, states);
    m_connection.synchronize();
}

std::set<std::uint16_t> KeyGrabs::grabOld(xcb_keycode_t code,
                                          const std::set<std::uint16_t>& states) {
    std::vector<std::pair<std::uint16_t, xcb_void_cookie_t>> asked;
    asked.reserve(states.size());
    for (const auto state : states) {
        asked.emplace_back(state,
                           xcb_grab_key_checked(m_connection.get(), 0, m_connection.root(), state,
                                                code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    // The last one first: once its outcome is known, the others' have arrived with it.
    std::set<std::uint16_t> grabbed;
    for (const auto& [state, cookie] : asked | std::views::reverse) {
        if (m_connection.succeeded(cookie))
            grabbed.insert(state);
    }
    return grabbed;
}

std::set<std::uint16_t> KeyGrabs::grabNew(xcb_keycode_t code,
                                          const std::set<std::uint16_t>& states) {
    if (states.empty())
        return {};
    const std::vector<std::uint32_t> modifiers(states.begin(), states.end());
    constexpr std::uint32_t events =
        XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
    const auto refused = m_connection.reply(
        xcb_input_xi_passive_grab_device_reply,
        xcb_input_xi_passive_grab_device(
            m_connection.get(), XCB_CURRENT_TIME, m_connection.root(), XCB_CURSOR_NONE, code,
            XCB_INPUT_DEVICE_ALL_MASTER, static_cast<std::uint16_t>(modifiers.size()), 1,
            XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
            XCB_INPUT_GRAB_OWNER_NO_OWNER, &events, modifiers.data()));
    if (!refused)
        return {};
    auto grabbed = states;
    for (auto each = xcb_input_xi_passive_grab_device_modifiers_iterator(refused.get());
         each.rem != 0; xcb_input_grab_modifier_info_next(&each))
        grabbed.erase(static_cast<std::uint16_t>(each.data->modifiers));
    return grabbed;
}

void KeyGrabs::releaseOld(xcb_keycode_t code, const std::set<std::uint16_t>& states) {
    for (const auto state : states)
        xcb_ungrab_key(m_connection.get(), code, m_connection.root(), state);
}

} // namespace kestrove::x11
