#include "Platform/X11/WindowIdentity/WindowLayer.h"

#include <array>
#include <string_view>

namespace kestrove::x11 {
namespace {

struct TypeLayer {
    std::string_view type;
    int layer;
};

constexpr auto typeLayers = std::to_array<TypeLayer>({
    {"_NET_WM_WINDOW_TYPE_NORMAL", layer::normal},
    {"_NET_WM_WINDOW_TYPE_DIALOG", layer::normal},
    {"_NET_WM_WINDOW_TYPE_DESKTOP", layer::desktop},
    {"_NET_WM_WINDOW_TYPE_UTILITY", layer::floating},
    {"_NET_WM_WINDOW_TYPE_TOOLBAR", layer::floating},
    {"_NET_WM_WINDOW_TYPE_MENU", layer::floating},
    {"_NET_WM_WINDOW_TYPE_SPLASH", layer::floating},
    {"_NET_WM_WINDOW_TYPE_DOCK", layer::dock},
    {"_NET_WM_WINDOW_TYPE_NOTIFICATION", layer::notification},
    {"_NET_WM_WINDOW_TYPE_DROPDOWN_MENU", layer::popUp},
    {"_NET_WM_WINDOW_TYPE_POPUP_MENU", layer::popUp},
    {"_NET_WM_WINDOW_TYPE_COMBO", layer::popUp},
    {"_NET_WM_WINDOW_TYPE_TOOLTIP", layer::toolTip},
    {"_NET_WM_WINDOW_TYPE_DND", layer::drag},
});

int layerOfTypes(Connection& connection, std::span<const std::uint32_t> types) {
    for (const auto type : types) {
        for (const auto& known : typeLayers) {
            if (connection.atom(known.type) == type)
                return known.layer;
        }
    }
    return layer::normal;
}

} // namespace

int windowLayer(Connection& connection, std::span<const std::uint32_t> types,
                Management management) {
    const int found = layerOfTypes(connection, types);
    if (management == Management::overrideRedirect && found == layer::normal)
        return layer::popUp;
    return found;
}

} // namespace kestrove::x11
