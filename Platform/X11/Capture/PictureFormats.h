#pragma once

#include "Platform/X11/Connection.h"

#include <map>
#include <optional>
#include <utility>
#include <xcb/render.h>

namespace kestrove::x11 {

/// How pixels of a visual are read by RENDER. Asked of the server once a connection.
class PictureFormats {
public:
    struct Format {
        xcb_render_pictformat_t identifier = XCB_NONE;
        std::uint8_t depth = 0;
        bool hasAlpha = false;
    };

    explicit PictureFormats(Connection& connection);
    /// Those of a server that is known otherwise, without any of our own.
    explicit PictureFormats(std::map<xcb_visualid_t, Format> byVisual)
        : m_byVisual(std::move(byVisual)) {}

    /// Absent for visuals that RENDER cannot read.
    [[nodiscard]] std::optional<Format> ofVisual(xcb_visualid_t visual) const;
    /// 8 bits a colour and no alpha, in 24 planes: what our frames are kept in.
    [[nodiscard]] xcb_render_pictformat_t rgb24() const { return m_rgb24; }
    [[nodiscard]] xcb_render_pictformat_t argb32() const { return m_argb32; }
    [[nodiscard]] xcb_visualid_t argb32Visual() const { return m_argb32Visual; }

private:
    std::map<xcb_visualid_t, Format> m_byVisual;
    xcb_render_pictformat_t m_rgb24 = XCB_NONE;
    xcb_render_pictformat_t m_argb32 = XCB_NONE;
    xcb_visualid_t m_argb32Visual = XCB_NONE;
};

} // namespace kestrove::x11
