#include "Platform/X11/HotKeys/KeyTexts.h"

#include "Platform/X11/HotKeys/PhysicalKeys.h"

#include <array>
#include <memory>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace kestrove::x11 {

namespace {

template <auto unref>
struct Unref {
    template <class Object>
    void operator()(Object* object) const {
        unref(object);
    }
};
using Context = std::unique_ptr<xkb_context, Unref<xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Unref<xkb_keymap_unref>>;
using State = std::unique_ptr<xkb_state, Unref<xkb_state_unref>>;

State readState(xcb_connection_t* server) {
    if (xkb_x11_setup_xkb_extension(
            server, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr) == 0)
        return nullptr;
    const auto device = xkb_x11_get_core_keyboard_device_id(server);
    const Context context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (device < 0 || !context)
        return nullptr;
    const Keymap keymap(
        xkb_x11_keymap_new_from_device(context.get(), server, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    return State(keymap ? xkb_x11_state_new_from_device(keymap.get(), server, device) : nullptr);
}

/// Keys like Escape and Delete type control characters, which show nothing.
bool canBeShown(xkb_keysym_t symbol) {
    const auto character = xkb_keysym_to_utf32(symbol);
    return character > 0x20 && (character < 0x7F || character > 0xA0);
}

} // namespace

std::string KeyTexts::characters(std::uint32_t keyCode) const {
    const auto code = serverCodeOf(keyCode);
    if (!code || !m_connection.isOpen())
        return {};
    const auto state = readState(m_connection.get());
    if (!state)
        return {};
    const auto layout = xkb_state_key_get_layout(state.get(), *code);
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(xkb_state_get_keymap(state.get()), *code,
                                                       layout, 0, &symbols);
    std::string characters;
    for (int index = 0; index < count; ++index) {
        std::array<char, 8> text{};
        if (canBeShown(symbols[index]) &&
            xkb_keysym_to_utf8(symbols[index], text.data(), text.size()) > 0)
            characters += text.data();
    }
    return characters;
}

} // namespace kestrove::x11
