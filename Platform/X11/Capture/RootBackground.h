#pragma once

#include "Platform/X11/Capture/ServerResource.h"
#include "Platform/X11/Connection.h"

namespace kestrove::x11 {

class PictureFormats;

/// What the bare root window looks like where windows cover it: the wallpaper.
///
/// Programs that set a wallpaper leave its pixmap in a property of the root. Where none did, the
/// server itself paints the root's background for us, into a window that never reaches the screen.
///
/// Thread: main.
class RootBackground {
public:
    /// `area`: pixels of the root. `isComposited`: a compositor paints the screen, and paints grey
    /// where it finds no wallpaper.
    RootBackground(Connection& connection, const PictureFormats& formats, xcb_rectangle_t area,
                   bool isComposited);

    /// To be read with root coordinates less `originX`, `originY`.
    [[nodiscard]] xcb_render_picture_t picture() const { return m_picture.get(); }
    [[nodiscard]] int originX() const { return m_originX; }
    [[nodiscard]] int originY() const { return m_originY; }

    /// Whether `atom` is a root property that names the wallpaper.
    [[nodiscard]] static bool isWallpaperProperty(Connection& connection, xcb_atom_t atom);

private:
    bool readWallpaper(const PictureFormats& formats);
    void paintRootBackground(const PictureFormats& formats, xcb_rectangle_t area);

    Connection& m_connection;
    Pixmap m_pixmap;
    Picture m_picture;
    int m_originX = 0;
    int m_originY = 0;
};

} // namespace kestrove::x11
