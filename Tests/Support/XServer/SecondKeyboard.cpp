#include "Tests/Support/XServer/SecondKeyboard.h"

#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/FakeInput.h"
#include "Tests/Support/XServer/Reply.h"

#include <array>
#include <ranges>
#include <string_view>

#include <xcb/xinput.h>

namespace kestrove::test {

namespace {

std::uint8_t findDevice(xcb_connection_t* connection) {
    const Reply devices(xcb_input_xi_query_device_reply(
        connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
    if (!devices)
        return 0;
    for (auto each = xcb_input_xi_query_device_infos_iterator(devices.get()); each.rem != 0;
         xcb_input_xi_device_info_next(&each)) {
        const std::string_view name(xcb_input_xi_device_info_name(each.data), each.data->name_len);
        if (name == "Xvfb keyboard")
            return static_cast<std::uint8_t>(each.data->deviceid);
    }
    return 0;
}

} // namespace

SecondKeyboard::SecondKeyboard(xcb_connection_t* connection)
    : m_connection(connection) {
    const auto* const extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (extension != nullptr && extension->present != 0) {
        m_firstEvent = extension->first_event;
        const Reply version(xcb_input_xi_query_version_reply(
            connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
        m_device = findDevice(connection);
    }
    if (m_device == 0)
        giveUp("the X server has no second keyboard");
}

void SecondKeyboard::pull() {
    setEnabled(false);
}

void SecondKeyboard::plug() {
    setEnabled(true);
}

void SecondKeyboard::keyDown(xcb_keycode_t key) {
    send(Direction::down, key);
    sync(m_connection);
}

void SecondKeyboard::keyUp(xcb_keycode_t key) {
    send(Direction::up, key);
    sync(m_connection);
}

void SecondKeyboard::pressTogether(const std::vector<xcb_keycode_t>& keys) {
    for (const auto key : keys)
        send(Direction::down, key);
    for (const auto key : keys | std::views::reverse)
        send(Direction::up, key);
    sync(m_connection);
}

void SecondKeyboard::send(Direction direction, xcb_keycode_t key) {
    const auto type =
        direction == Direction::down ? XCB_INPUT_DEVICE_KEY_PRESS : XCB_INPUT_DEVICE_KEY_RELEASE;
    sendFakeInput(m_connection, {.type = static_cast<std::uint8_t>(m_firstEvent + type),
                                 .detail = key,
                                 .device = m_device});
}

void SecondKeyboard::setEnabled(bool isEnabled) {
    constexpr std::string_view property = "Device Enabled";
    const Reply atom(xcb_intern_atom_reply(
        m_connection,
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(property.size()),
                        property.data()),
        nullptr));
    // The library pads the one byte that is sent, and reads the padding from here too.
    const std::array<std::uint8_t, 4> value{isEnabled ? std::uint8_t{1} : std::uint8_t{0}};
    constexpr std::uint8_t bitsPerItem = 8;
    const auto cookie = xcb_input_xi_change_property_checked(
        m_connection, m_device, XCB_PROP_MODE_REPLACE, bitsPerItem, atom ? atom->atom : 0,
        XCB_ATOM_INTEGER, 1, value.data());
    if (const Reply error(xcb_request_check(m_connection, cookie)); error)
        giveUp("the second keyboard cannot be pulled or plugged in");
}

} // namespace kestrove::test
