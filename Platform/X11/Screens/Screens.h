#pragma once

#include "Async/TaskScope.h"
#include "Desktop/Screens.h"
#include "Platform/X11/RootSelection.h"
#include "Platform/X11/Screens/MonitorLayout.h"

#include <functional>
#include <vector>

namespace kestrove::x11 {

/// The screens are RandR monitors; the main one, the primary, comes first.
///
/// A point is a pixel and the backing scale factor always 1, because X has one coordinate space for
/// all monitors; what toolkits make of Xft.dpi is between them and their windows.
///
/// The usable area follows the window manager's own changes to it. Without a window manager it is
/// looked at again only when the monitors change.
class Screens final : public kestrove::Screens {
public:
    /// Both must outlive this.
    Screens(Connection& connection, MonitorLayout& layout);

    std::vector<Screen> screens() override;
    Subscription onChanged(std::function<void()> callback) override;

private:
    void handle(const xcb_generic_event_t& event);
    void invalidate();
    void read();
    void tell();

    Connection& m_connection;
    MonitorLayout& m_layout;
    RootSelection m_root;
    std::vector<Screen> m_screens;
    /// As the subscribers know them.
    std::vector<Screen> m_toldScreens;
    bool m_isStale = false;
    Signal<> m_changed;
    Subscription m_events;
    Subscription m_layoutChanged;
    TaskScope m_tasks;
};

} // namespace kestrove::x11
