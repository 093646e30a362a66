#pragma once

#include "Platform/X11/Capture/CaptureServices.h"
#include "Platform/X11/Capture/RedirectedWindow.h"
#include "Platform/X11/Capture/SourceContent.h"

#include <expected>
#include <memory>
#include <optional>
#include <vector>

namespace kestrove::x11 {

/// One window by itself, without its border and the shadow that its program draws around it. It
/// stays live while it is covered or off screen; while it is not viewable its last picture stays.
class WindowContent final : public SourceContent {
public:
    /// Waits for the server. Fails when there is no such window or RENDER cannot read it.
    static std::expected<std::unique_ptr<WindowContent>, PlatformError>
    open(Connection& connection, CaptureServices& services, xcb_window_t window);

    ~WindowContent() override;

    Extent extent() const override;
    void setArea(xcb_rectangle_t /*area*/) override {}
    std::optional<Place> placeUnderPointer(xcb_window_t topLevelUnderPointer) override;
    Region takeDamage() override;
    bool hasDamage() const override { return !m_damage.isEmpty(); }
    void paint(const PaintTarget& target, const Region& region) override;
    Region paintedAtOnce(const Region& region) const override;

private:
    /// Pixels around the window proper that are the program's own shadow.
    struct Shadow {
        int left = 0;
        int right = 0;
        int top = 0;
        int bottom = 0;
    };

    WindowContent(Connection& connection, CaptureServices& services, xcb_window_t window,
                  PictureFormats::Format format, const xcb_get_geometry_reply_t& geometry,
                  std::uint32_t sizeAsked);
    void followAncestors();
    void leaveAncestors();
    void readShadow();
    void readShape();
    /// From the outer edge of the window's border to the origin of the content.
    [[nodiscard]] int offsetX() const { return m_border + m_shadow.left; }
    [[nodiscard]] int offsetY() const { return m_border + m_shadow.top; }
    void renewAll();
    void onEvent(const xcb_generic_event_t& event);
    void onConfigure(const xcb_configure_notify_event_t& event);
    [[nodiscard]] bool isFollowed(xcb_window_t window) const;

    Connection& m_connection;
    CaptureServices& m_services;
    std::weak_ptr<const void> m_lifetime;
    xcb_window_t m_window;
    int m_width;
    int m_height;
    int m_border;
    /// The request that told these three, until the server has told something after it.
    std::optional<std::uint32_t> m_sizeAsked;
    Shadow m_shadow;
    /// Relative to the window inside its border.
    std::optional<Region> m_shape;
    std::vector<xcb_window_t> m_ancestors;
    /// Where the content lies on the root; absent until asked for, and after something moved.
    std::optional<Place> m_place;
    RedirectedWindow m_redirected;
    /// Content coordinates.
    Region m_damage;
    bool m_hasNews = true;
    bool m_isGone = false;
    Subscription m_damaged;
    Subscription m_events;
    Subscription m_drained;
};

} // namespace kestrove::x11
