#include "Platform/X11/Properties.h"

#include <span>

namespace kestrove::x11 {
namespace {

/// Longer properties are cut (32 KiB; a client list of 8192 windows).
constexpr std::uint32_t longestInWords = 8192;

Reply<xcb_get_property_reply_t> hear(Connection& connection, xcb_get_property_cookie_t asked) {
    return connection.reply(xcb_get_property_reply, asked);
}

} // namespace

xcb_get_property_cookie_t askProperty(Connection& connection, xcb_window_t window,
                                      std::string_view name) {
    return xcb_get_property(connection.get(), 0, window, connection.atom(name),
                            XCB_GET_PROPERTY_TYPE_ANY, 0, longestInWords);
}

std::vector<std::uint32_t> hearWords(Connection& connection, xcb_get_property_cookie_t asked) {
    const auto property = hear(connection, asked);
    if (!property || property->format != 32)
        return {};
    const std::span items(static_cast<const std::uint32_t*>(xcb_get_property_value(property.get())),
                          property->value_len);
    return {items.begin(), items.end()};
}

std::optional<std::uint32_t> hearWord(Connection& connection, xcb_get_property_cookie_t asked) {
    const auto words = hearWords(connection, asked);
    return words.empty() ? std::nullopt : std::optional(words.front());
}

std::optional<ByteProperty> hearBytes(Connection& connection, xcb_get_property_cookie_t asked) {
    const auto property = hear(connection, asked);
    if (!property || property->format != 8)
        return std::nullopt;
    return ByteProperty{property->type, std::string(static_cast<const char*>(
                                                        xcb_get_property_value(property.get())),
                                                    property->value_len)};
}

std::vector<std::uint32_t> rootWords(Connection& connection, std::string_view name) {
    return hearWords(connection, askProperty(connection, connection.root(), name));
}

} // namespace kestrove::x11
