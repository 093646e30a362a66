#include "Platform/X11/WindowIdentity/ClientList.h"

#include "Platform/X11/Properties.h"

#include <algorithm>
#include <map>
#include <span>
#include <string_view>
#include <utility>

namespace kestrove::x11 {
namespace {

/// Deeper than window managers nest (frame, decoration, client).
constexpr int deepestNesting = 16;

/// Whether a window manager runs now: one that died leaves its lists on the root, but not the
/// window it points at.
bool hasWindowManager(Connection& connection) {
    constexpr std::string_view check = "_NET_SUPPORTING_WM_CHECK";
    const auto onRoot = rootWords(connection, check);
    if (onRoot.empty())
        return false;
    return hearWord(connection, askProperty(connection, onRoot.front(), check)) == onRoot.front();
}

/// Bottom to top.
std::vector<xcb_window_t> managedWindows(Connection& connection) {
    const auto stacking = askProperty(connection, connection.root(), "_NET_CLIENT_LIST_STACKING");
    const auto listed = askProperty(connection, connection.root(), "_NET_CLIENT_LIST");
    auto windows = hearWords(connection, stacking);
    auto byAge = hearWords(connection, listed);
    return windows.empty() ? byAge : windows;
}

/// The children of the root that hold the windows, in their order; none for a window that has gone.
std::vector<xcb_window_t> topLevels(Connection& connection,
                                    const std::vector<xcb_window_t>& windows) {
    std::vector<xcb_window_t> found(windows.size(), XCB_WINDOW_NONE);
    std::vector<std::pair<std::size_t, xcb_window_t>> climbing;
    climbing.reserve(windows.size());
    for (std::size_t i = 0; i < windows.size(); ++i)
        climbing.emplace_back(i, windows[i]);
    for (int level = 0; level < deepestNesting && !climbing.empty(); ++level) {
        std::vector<xcb_query_tree_cookie_t> asked;
        asked.reserve(climbing.size());
        for (const auto& [index, window] : climbing)
            asked.push_back(xcb_query_tree(connection.get(), window));
        std::vector<std::pair<std::size_t, xcb_window_t>> next;
        for (std::size_t i = 0; i < climbing.size(); ++i) {
            const auto tree = connection.reply(xcb_query_tree_reply, asked[i]);
            if (!tree)
                continue;
            if (tree->parent == connection.root())
                found[climbing[i].first] = climbing[i].second;
            else if (tree->parent != XCB_WINDOW_NONE)
                next.emplace_back(climbing[i].first, tree->parent);
        }
        climbing = std::move(next);
    }
    return found;
}

bool isViewable(Connection& connection, xcb_window_t window) {
    const auto attributes = connection.reply(xcb_get_window_attributes_reply,
                                             xcb_get_window_attributes(connection.get(), window));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

/// The top levels that stand for themselves: mapped, with a picture, and, where a window manager
/// looks after the others, override-redirect.
std::vector<bool> standAlone(Connection& connection, std::span<const xcb_window_t> windows,
                             bool isManaged) {
    std::vector<xcb_get_window_attributes_cookie_t> asked;
    for (const auto window : windows)
        asked.push_back(xcb_get_window_attributes(connection.get(), window));
    std::vector<bool> result;
    for (const auto cookie : asked) {
        const auto attributes = connection.reply(xcb_get_window_attributes_reply, cookie);
        result.push_back(attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                         attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT &&
                         (!isManaged || attributes->override_redirect));
    }
    return result;
}

} // namespace

std::optional<std::vector<ClientWindow>> readClientList(Connection& connection) {
    const bool isManaged = hasWindowManager(connection);
    const auto clients = isManaged ? managedWindows(connection) : std::vector<xcb_window_t>();
    const auto holders = topLevels(connection, clients);
    std::map<xcb_window_t, std::vector<xcb_window_t>> held;
    for (std::size_t i = 0; i < clients.size(); ++i)
        held[holders[i]].push_back(clients[i]);

    // The stacking order is the root's own: lists of window managers leave out what they do not
    // manage, and lag behind.
    const auto tree =
        connection.reply(xcb_query_tree_reply, xcb_query_tree(connection.get(), connection.root()));
    if (!tree)
        return std::nullopt;
    const std::span children(xcb_query_tree_children(tree.get()), tree->children_len);
    const auto areAlone = standAlone(connection, children, isManaged);
    std::vector<ClientWindow> windows;
    for (std::size_t i = children.size(); i-- > 0;) {
        if (const auto frame = held.find(children[i]); frame != held.end()) {
            for (auto client = frame->second.rbegin(); client != frame->second.rend(); ++client)
                windows.push_back({*client, children[i]});
        } else if (areAlone[i]) {
            windows.push_back({children[i], children[i]});
        }
    }
    return windows;
}

xcb_window_t readActiveWindow(Connection& connection) {
    if (hasWindowManager(connection)) {
        const auto told = askProperty(connection, connection.root(), "_NET_ACTIVE_WINDOW");
        const auto listed = askProperty(connection, connection.root(), "_NET_CLIENT_LIST");
        const auto active = hearWord(connection, told);
        const auto clients = hearWords(connection, listed);
        // openbox goes on naming the last window when none has the focus any more.
        const bool isManaged = active && std::ranges::find(clients, *active) != clients.end();
        return isManaged && isViewable(connection, *active) ? *active
                                                            : xcb_window_t{XCB_WINDOW_NONE};
    }
    const auto focus =
        connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection.get()));
    if (!focus || focus->focus == connection.root() || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT)
        return XCB_WINDOW_NONE;
    return topLevels(connection, {focus->focus}).front();
}

} // namespace kestrove::x11
