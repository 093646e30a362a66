#pragma once

#include "Tests/X11/Application/ApplicationFixture.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kestrove::test {

/// A desktop with a tray of the older kind (XEmbed) with room for one icon in a corner.
class TrayFixture : public ApplicationFixture {
protected:
    explicit TrayFixture(SessionBus sessionBus = SessionBus::none);

    /// In the corner of a display between the edges "top" or "bottom" and "left" or "right".
    /// Returns when the tray is there.
    void startTray(const std::string& edge = "top", const std::string& align = "left",
                   const xcb_rectangle_t& display = leftPlace);

    /// Clicks the icon, which comes when the tray has taken it in.
    [[nodiscard]] bool clickIcon(std::uint8_t button);
    /// The pointer is on the icon from then on.
    void pointAtIcon();

    /// Root pixels.
    [[nodiscard]] xcb_rectangle_t iconPlace() const;

    /// As the window manager's button does.
    void closeOutput();
    [[nodiscard]] bool isOutputSeen();
    [[nodiscard]] bool hasSaved(std::string_view line) const;

    static constexpr int traySide = 28; ///< of the icon's square
private:
    std::unique_ptr<ChildProcess> m_tray;
    int m_iconX = traySide / 2;
    int m_iconY = traySide / 2;
};

} // namespace kestrove::test
