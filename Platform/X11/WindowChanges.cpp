#include "Platform/X11/WindowChanges.h"

#include "Platform/X11/RootSelection.h"

#include <memory>
#include <utility>

namespace kestrove::x11 {
namespace {

class WindowChanges {
public:
    WindowChanges(Connection& connection, std::function<void()> callback)
        : m_root(connection, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE)
        , m_callback(std::move(callback))
        , m_events(connection.events.subscribe(
              [this](const auto& event) { m_hasChanged |= isChange(event); }))
        , m_drained(connection.eventsDrained.subscribe([this] {
            if (std::exchange(m_hasChanged, false))
                m_callback();
        })) {}

private:
    /// Also what is told of windows inside others, which somebody else may have asked for: one look
    /// too many harms nobody.
    bool isChange(const xcb_generic_event_t& event) {
        switch (event.response_type & 0x7F) {
        case XCB_DESTROY_NOTIFY:
        case XCB_UNMAP_NOTIFY:
        case XCB_MAP_NOTIFY:
        case XCB_REPARENT_NOTIFY:
        case XCB_CONFIGURE_NOTIFY:
        case XCB_CIRCULATE_NOTIFY:
            return true;
        case XCB_PROPERTY_NOTIFY:
            return m_root.isChangeOf(event, "_NET_CURRENT_DESKTOP") ||
                   m_root.isChangeOf(event, "_NET_CLIENT_LIST_STACKING");
        default:
            return false;
        }
    }

    RootSelection m_root;
    std::function<void()> m_callback;
    bool m_hasChanged = false;
    Subscription m_events;
    Subscription m_drained;
};

} // namespace

Subscription watchWindowChanges(Connection& connection, std::function<void()> callback) {
    auto changes = std::make_unique<WindowChanges>(connection, std::move(callback));
    return Subscription([kept = std::move(changes)]() mutable { kept.reset(); });
}

} // namespace kestrove::x11
