#pragma once

#include "Tests/Support/PixelReader/PixelImage.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/XDesktop.h"

namespace kestrove::test {

/// A display whose picture the test knows pixel by pixel: a window of another program covers it,
/// and has a pointer of its own.
class PaintedDisplay {
public:
    /// With `depth` 32 it has no shadow, whichever compositor there is.
    PaintedDisplay(XDesktop& desktop, const xcb_rectangle_t& place, WindowFill fill,
                   std::uint8_t depth);

    /// In pixels of the display.
    void paint(const xcb_rectangle_t& rectangle, Color color);

    /// With the pointer when it is there; without what others have laid onto the display.
    [[nodiscard]] PixelImage picture() const;
    /// Whether what was painted last is on the screen: a compositor may not have shown it.
    [[nodiscard]] bool isOnScreen() const;
    /// The same in a new picture of the window, for a compositor that has lost the old one.
    void paintAgain();

private:
    void usePointer();

    XDesktop& m_desktop;
    xcb_rectangle_t m_place;
    TestWindow m_window;
    PixelImage m_picture;
    xcb_rectangle_t m_painted{};
};

} // namespace kestrove::test
