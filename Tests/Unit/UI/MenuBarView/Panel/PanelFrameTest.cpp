#include "UI/MenuBarView/Panel/PanelFrame.h"

#include "Tests/Support/QtSpin.h"
#include "Tests/Unit/UI/MenuBarView/MenuBarViewFixture.h"

#include <QApplication>
#include <QScreen>

#include <string>

namespace kestrove {
namespace {

/// The panel as a window of its own, which lives until it is closed.
class PanelFrameTest : public MenuBarViewFixture {
public:
    ~PanelFrameTest() override { delete frame; }

protected:
    PanelFrameTest() {
        frame = new PanelFrame(*view, std::nullopt);
        frame->show();
        settle();
    }

    void settle() {
        bench.settle();
        QApplication::processEvents();
        QApplication::processEvents();
    }

    void list(int windows) {
        auto& listed = bench.lister.snapshot.lists.windows;
        listed.clear();
        for (int each = 0; each < windows; ++each)
            listed.push_back({CaptureSource::window(static_cast<std::uint32_t>(100 + each)),
                              "Window", "Editor", std::nullopt});
        run(MenuCommand::refreshSources);
        settle();
    }

    PanelFrame* frame = nullptr;
};

TEST_F(PanelFrameTest, GrowsWithTheListsAndStaysOnTheScreen) {
    const auto before = frame->size();
    list(3);
    EXPECT_TRUE(spinUntil([&] { return frame->height() > before.height(); })) << before.height();
    EXPECT_EQ(frame->width(), before.width());
    const int few = frame->height();
    list(100);
    const auto screen = frame->screen()->availableGeometry();
    EXPECT_TRUE(spinUntil([&] { return frame->height() > few; })) << few;
    EXPECT_LE(frame->height(), screen.height());
    EXPECT_LE(frame->frameGeometry().bottom(), screen.bottom());
    const int many = frame->height();
    list(0);
    EXPECT_EQ(frame->height(), many) << "what is about to be clicked stays in its place";
}

TEST_F(PanelFrameTest, KeepsTheSizeThatTheUserGivesIt) {
    frame->resize(400, 300);
    settle();
    list(3);
    EXPECT_EQ(frame->size(), QSize(400, 300));
}

} // namespace
} // namespace kestrove
