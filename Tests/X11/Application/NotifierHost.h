#pragma once

#include <memory>
#include <string>
#include <vector>

struct sd_bus;
struct sd_bus_message;

namespace kestrove::test {

/// A tray of the newer kind: both the watcher and a host of StatusNotifierItems, on a session bus.
/// It serves while it is asked something or told to wait.
///
/// Its menu is what the icon offers to hosts that draw menus themselves (com.canonical.dbusmenu).
class NotifierHost {
public:
    /// Ends the test program when it cannot have the bus's names.
    explicit NotifierHost(const std::string& busAddress);
    ~NotifierHost();
    NotifierHost(const NotifierHost&) = delete;
    NotifierHost& operator=(const NotifierHost&) = delete;

    /// Waits until an icon has come.
    [[nodiscard]] bool hasIcon();
    /// A text of the icon's, e.g. "Status".
    [[nodiscard]] std::string property(const char* name);
    /// Width of the largest picture that the icon sends, pixels; 0 when it sends none.
    [[nodiscard]] int pictureWidth();
    /// A click with the left button at this place of the screen.
    void activate(int x, int y);

    struct Entry {
        int id = 0;
        std::string label; ///< empty for a divider
        bool isEnabled = true;
        bool isChecked = false;
    };
    /// From top to bottom, as it is now.
    [[nodiscard]] std::vector<Entry> menu();
    /// Clicks the first entry whose label begins so; false when there is none that can be clicked.
    [[nodiscard]] bool click(const std::string& start);

    /// Answers whoever has asked something.
    void serve();

private:
    struct Release;
    using Message = std::unique_ptr<sd_bus_message, Release>;
    [[nodiscard]] Message call(sd_bus_message* request);
    [[nodiscard]] Message readProperty(const char* name);

    sd_bus* m_bus = nullptr;
    std::string m_item; ///< the icon's name on the bus; empty while there is none
};

} // namespace kestrove::test
