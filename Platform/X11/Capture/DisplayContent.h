#pragma once

#include "Platform/X11/Capture/CaptureServices.h"
#include "Platform/X11/Capture/DisplayComposition.h"
#include "Platform/X11/Capture/RedirectedWindow.h"
#include "Platform/X11/Capture/RootBackground.h"
#include "Platform/X11/Capture/SourceContent.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace kestrove::x11 {

/// A display as the screen shows it, but for windows that are left out: where one of them would be
/// seen, the windows beneath it are composed instead, and everywhere if these fill the display.
///
/// Only what changes in the display and outside the left-out windows makes it new: what we draw
/// into our own windows wakes us once after a frame where the screen is read, and not at all
/// without one.
class DisplayContent final : public SourceContent {
public:
    /// `area`: the display's pixels on the root.
    DisplayContent(Connection& connection, CaptureServices& services, xcb_rectangle_t area,
                   std::vector<xcb_window_t> excluded);
    ~DisplayContent() override;

    Extent extent() const override { return {m_area.width, m_area.height}; }
    void setArea(xcb_rectangle_t area) override;
    std::optional<Place> placeUnderPointer(xcb_window_t topLevelUnderPointer) override;
    Region takeDamage() override;
    bool hasDamage() const override { return !m_damage.isEmpty(); }
    void paint(const PaintTarget& target, const Region& region) override;
    Region paintedAtOnce(const Region& region) const override;

private:
    struct Beneath {
        std::unique_ptr<RedirectedWindow> redirected;
        StackedWindow seen;
        Region interest;
        Subscription damaged;
    };

    void arrange();
    void updateBeneath();
    void watchScreen();
    /// The server has worked through this request.
    void noticeProgress(std::uint32_t request);
    void onRootDamage(const xcb_rectangle_t& area, std::uint32_t request);
    void onEvent(const xcb_generic_event_t& event);
    void onDrained();
    [[nodiscard]] Region displayRegion() const { return Region(m_area); }
    /// A redirected window is brought to the screen when the server next has nothing else to do, as
    /// far as it was drawn into. Reading the root brings it there too, before the drawing that the
    /// reading is for, and forgets that anything was drawn: so it is told once more.
    void tellOfDrawing(xcb_window_t window, const Region& drawn);
    void paintBackground(const PaintTarget& target, const Region& root);
    void paintWindow(const PaintTarget& target, const ComposedWindow& window, const Region& root);

    Connection& m_connection;
    std::weak_ptr<const void> m_lifetime;
    CaptureServices& m_services;
    xcb_rectangle_t m_area;
    std::vector<xcb_window_t> m_excluded;
    DisplayComposition m_composition;
    std::map<xcb_window_t, Beneath> m_beneath;
    /// Those of them of which a change was told since the changes were last accepted.
    std::set<xcb_window_t> m_damagedBeneath;
    std::unique_ptr<RootBackground> m_background;
    Picture m_root;
    /// None while the screen is not read.
    DamageMonitor m_rootDamage;
    Subscription m_rootDamageTold;
    /// Till the server has come to this request, what is told is that all has changed, since the
    /// monitor is new.
    std::optional<std::uint32_t> m_beginOfWatch;
    ServerRegion m_drawn;
    /// Something to show was told since the changes were last accepted.
    bool m_isRootDamaged = false;
    /// Root coordinates.
    Region m_damage;
    bool m_isNew = true;
    bool m_hasNews = false;
    Subscription m_events;
    Subscription m_drained;
    Subscription m_stackChanged;
    Subscription m_ownWindowsChanged;
};

} // namespace kestrove::x11
