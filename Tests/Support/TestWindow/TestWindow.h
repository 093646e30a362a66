#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace kestrove::test {

/// Colours are 0xAARRGGBB, in an ARGB window premultiplied as X wants them; elsewhere alpha counts
/// for nothing.
using Color = std::uint32_t;

enum class WindowFill {
    color,
    pattern, ///< each pixel differs from its neighbours, so that a shift or a scaling shows
};

/// A window of another program: it has a connection of its own. Every function returns when the
/// server has done it; what a window manager does about it comes later, wait for that. The content
/// is drawn once and kept by the server as the window's background, so no expose handling is
/// needed.
class TestWindow {
public:
    struct Options {
        /// Content without frame, root pixels. Window managers are asked to keep to it exactly.
        xcb_rectangle_t geometry{100, 100, 200, 150};
        std::uint8_t depth = 24; ///< 24, or 32 for an ARGB visual
        WindowFill fill = WindowFill::color;
        Color color = 0xff336699;
        bool overrideRedirect = false;
        bool mapped = true;
        std::string title = "test window";
        std::string instanceName = "testwindow"; ///< WM_CLASS
        std::string className = "TestWindow";
        std::optional<std::uint32_t> processIdentifier = std::nullopt; ///< none: the test's own
        std::optional<double> opacity = std::nullopt; ///< _NET_WM_WINDOW_OPACITY, 0 to 1
    };

    TestWindow(const std::string& displayName, const Options& options);
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    [[nodiscard]] xcb_window_t id() const { return m_window; }
    [[nodiscard]] xcb_connection_t* connection() const { return m_connection; }
    /// Where the content is now, in root pixels.
    [[nodiscard]] xcb_rectangle_t geometry() const;
    /// Mapped, and every ancestor too: with a window manager that is its work.
    [[nodiscard]] bool isViewable() const;
    /// Maps it and waits until it is viewable.
    void show();
    void unmap();
    void raise();
    void move(int x, int y);
    /// The pattern continues in what is gained; content drawn with fillRectangle is lost.
    void resize(int width, int height);
    /// The window is gone, the connection stays.
    void destroy();
    /// As if the program had crashed: the connection goes and all windows with it.
    void disconnect();

    /// From now on its program hangs and the server draws nothing for it: what has to be drawn
    /// anew stays as it is.
    void hang();

    /// Window coordinates. Stays until the next resize.
    void fillRectangle(const xcb_rectangle_t& rectangle, Color color);
    /// The bounding shape: the union of these, in window coordinates.
    void setShape(const std::vector<xcb_rectangle_t>& rectangles);
    void setOpacity(double opacity);
    /// WM_NAME and _NET_WM_NAME.
    void setTitle(std::string_view title);
    void setProperty(std::string_view name, xcb_atom_t type,
                     const std::vector<std::uint32_t>& items);
    void setText(std::string_view name, std::string_view type, std::string_view text);
    void removeProperty(std::string_view name);
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;

    /// What the pattern holds at a pixel of the window, 0xff in the alpha.
    [[nodiscard]] static Color patternAt(int x, int y);

private:
    [[nodiscard]] xcb_visualid_t visual() const;
    void setHints(const Options& options);
    void paint(int width, int height);

    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_pixmap_t m_content = XCB_PIXMAP_NONE;
    std::uint8_t m_depth;
    WindowFill m_fill;
    Color m_color;
};

} // namespace kestrove::test
