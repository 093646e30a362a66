#pragma once

#include "Tests/X11/Application/ApplicationFixture.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestrove::test {

struct Desk {
    std::string name;
    WindowManager manager = WindowManager::none;
    Compositor compositor = Compositor::none;

    [[nodiscard]] bool canMinimise() const;
    /// Whether there is somebody who keeps windows above others.
    [[nodiscard]] bool hasLevels() const;
};

/// Every window manager of ours, one of each kind with a compositor beside it, and none at all.
[[nodiscard]] std::vector<Desk> everyDesk();

/// The program while a test changes its settings. Sees the output window as any other program does:
/// by its identifier alone.
class SteeredFixture : public ApplicationFixture {
public:
    ~SteeredFixture() override;

protected:
    explicit SteeredFixture(const Desk& desk);

    void startSteered(std::string_view settings);
    /// hide, unhide, float, sink, show, start, stop
    void tell(std::string_view command) const;

    [[nodiscard]] bool isOffScreen() const;
    /// Off every screen, and there for all who capture it.
    [[nodiscard]] bool isParked() const;
    /// Hides it and waits until the window manager has let go of it too.
    [[nodiscard]] testing::AssertionResult parks();
    /// Unhides it and waits until it lies with its content at `place`.
    [[nodiscard]] testing::AssertionResult returnsTo(const xcb_rectangle_t& place);
    /// The same, after it has come back once. A window manager that was late at the start may have
    /// left it as large as the display; what comes back keeps clear of the edges.
    [[nodiscard]] xcb_rectangle_t placeToComeBackTo();
    [[nodiscard]] bool isOutputViewable() const;
    /// As the user's hand does, so that most of it lies on the right display.
    void moveOutputToTheRight();
    /// As the user's click on the window's button does, where the desktop has such a thing.
    void minimise();
    [[nodiscard]] bool hasState(std::string_view state) const;
    /// Like `shows`, whether or not the window can be seen.
    [[nodiscard]] testing::AssertionResult presents(PaintedDisplay& display,
                                                    std::string_view name) const;

    const Desk& desk;

private:
    int m_commands = -1;
};

} // namespace kestrove::test
