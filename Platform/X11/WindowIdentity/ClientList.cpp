#include "Platform/X11/WindowIdentity/ClientList.h"

#include "Platform/X11/Properties.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>

namespace kestrove::x11 {
namespace {

/// Deeper than window managers nest (frame, decoration, client).
constexpr int deepestNesting = 16;

constexpr std::string_view windowManagerCheck = "_NET_SUPPORTING_WM_CHECK";

/// Whether a window manager runs now: one that died leaves its lists on the root, but not the
/// window that the root points at, and that points at itself.
class WindowManagerQuestion {
public:
    WindowManagerQuestion(Connection& connection, std::optional<std::uint32_t> window)
        : m_connection(connection)
        , m_window(window) {
        if (m_window)
            m_asked = askProperty(connection, *m_window, windowManagerCheck);
    }

    [[nodiscard]] bool hear() const {
        return m_window && hearWord(m_connection, m_asked) == m_window;
    }

private:
    Connection& m_connection;
    std::optional<std::uint32_t> m_window;
    xcb_get_property_cookie_t m_asked{};
};

/// What window managers say of their windows.
struct Lists {
    std::optional<std::uint32_t> check;
    std::vector<xcb_window_t> stacking; ///< bottom to top
    std::vector<xcb_window_t> byAge;
};

Lists readLists(Connection& connection) {
    const auto root = connection.root();
    const auto check = askProperty(connection, root, windowManagerCheck);
    const auto stacking = askProperty(connection, root, "_NET_CLIENT_LIST_STACKING");
    const auto byAge = askProperty(connection, root, "_NET_CLIENT_LIST");
    Lists lists;
    lists.check = hearWord(connection, check);
    lists.stacking = hearWords(connection, stacking);
    lists.byAge = hearWords(connection, byAge);
    return lists;
}

/// Which child of the root holds each window: asks for the parents of all of them at a time.
class Climb {
public:
    Climb(Connection& connection, std::span<const xcb_window_t> windows)
        : m_connection(connection)
        , m_found(windows.size(), XCB_WINDOW_NONE) {
        for (std::size_t i = 0; i < windows.size(); ++i)
            m_climbing.push_back({i, windows[i]});
    }

    [[nodiscard]] bool isDone() const { return m_climbing.empty() || m_level == deepestNesting; }
    void ask() {
        for (auto& each : m_climbing)
            each.asked = xcb_query_tree(m_connection.get(), each.window);
    }
    /// `children`: of the root, where they are known already; spares asking for their parent.
    void hear(const std::set<xcb_window_t>& children) {
        ++m_level;
        std::vector<Step> next;
        for (const auto& each : m_climbing) {
            const auto tree = m_connection.reply(xcb_query_tree_reply, each.asked);
            if (!tree)
                continue;
            if (tree->parent == m_connection.root())
                m_found[each.index] = each.window;
            else if (children.contains(tree->parent))
                m_found[each.index] = tree->parent;
            else if (tree->parent != XCB_WINDOW_NONE)
                next.push_back({each.index, tree->parent});
        }
        m_climbing = std::move(next);
    }
    /// In the order of the windows; none for one that has gone.
    [[nodiscard]] const std::vector<xcb_window_t>& found() const { return m_found; }

private:
    struct Step {
        std::size_t index;
        xcb_window_t window;
        xcb_query_tree_cookie_t asked{};
    };

    Connection& m_connection;
    std::vector<xcb_window_t> m_found;
    std::vector<Step> m_climbing;
    int m_level = 0;
};

bool isViewable(Connection& connection, xcb_window_t window) {
    const auto attributes = connection.reply(xcb_get_window_attributes_reply,
                                             xcb_get_window_attributes(connection.get(), window));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

/// The top levels that stand for themselves: mapped, with a picture, and, where a window manager
/// looks after the others, override-redirect.
bool standsAlone(const xcb_get_window_attributes_reply_t& attributes, bool isManaged) {
    return attributes.map_state == XCB_MAP_STATE_VIEWABLE &&
           attributes._class == XCB_WINDOW_CLASS_INPUT_OUTPUT &&
           (!isManaged || attributes.override_redirect);
}

} // namespace

std::optional<std::vector<ClientWindow>> readClientList(Connection& connection) {
    // All that can be asked at a time is: whoever waits for this list waits for each answer.
    const auto lists = readLists(connection);
    const auto& clients = lists.stacking.empty() ? lists.byAge : lists.stacking;
    const WindowManagerQuestion windowManager(connection, lists.check);
    Climb climb(connection, clients);
    climb.ask();
    // The stacking order is the root's own: lists of window managers leave out what they do not
    // manage, and lag behind.
    const auto asked = xcb_query_tree(connection.get(), connection.root());
    const bool isManaged = windowManager.hear();
    const auto tree = connection.reply(xcb_query_tree_reply, asked);
    if (!tree)
        return std::nullopt;
    const std::span children(xcb_query_tree_children(tree.get()), tree->children_len);
    const std::set<xcb_window_t> known(children.begin(), children.end());
    climb.hear(known);

    std::vector<xcb_get_window_attributes_cookie_t> questions;
    questions.reserve(children.size());
    for (const auto child : children)
        questions.push_back(xcb_get_window_attributes(connection.get(), child));
    while (!climb.isDone()) {
        climb.ask();
        climb.hear(known);
    }
    std::map<xcb_window_t, std::vector<xcb_window_t>> held;
    for (std::size_t i = 0; isManaged && i < clients.size(); ++i)
        held[climb.found()[i]].push_back(clients[i]);

    std::vector<ClientWindow> windows;
    for (std::size_t i = children.size(); i-- > 0;) {
        const auto attributes = connection.reply(xcb_get_window_attributes_reply, questions[i]);
        if (const auto frame = held.find(children[i]); frame != held.end()) {
            for (auto client = frame->second.rbegin(); client != frame->second.rend(); ++client)
                windows.push_back({*client, children[i]});
        } else if (attributes && standsAlone(*attributes, isManaged)) {
            windows.push_back({children[i], children[i]});
        }
    }
    return windows;
}

xcb_window_t readActiveWindow(Connection& connection) {
    const auto root = connection.root();
    const auto checked = askProperty(connection, root, windowManagerCheck);
    const auto told = askProperty(connection, root, "_NET_ACTIVE_WINDOW");
    const auto listed = askProperty(connection, root, "_NET_CLIENT_LIST");
    const WindowManagerQuestion windowManager(connection, hearWord(connection, checked));
    const auto active = hearWord(connection, told);
    const auto clients = hearWords(connection, listed);
    if (windowManager.hear()) {
        // openbox goes on naming the last window when none has the focus any more.
        const bool isManaged = active && std::ranges::find(clients, *active) != clients.end();
        return isManaged && isViewable(connection, *active) ? *active
                                                            : xcb_window_t{XCB_WINDOW_NONE};
    }
    const auto focus =
        connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection.get()));
    if (!focus || focus->focus == connection.root() || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT)
        return XCB_WINDOW_NONE;
    const std::array windows{focus->focus};
    Climb climb(connection, windows);
    while (!climb.isDone()) {
        climb.ask();
        climb.hear({});
    }
    return climb.found().front();
}

} // namespace kestrove::x11
