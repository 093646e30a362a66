#include "Core/FrameRenderer/FrameRenderer.h"
#include "Tests/Support/ScriptedDesktop/ScriptedDisplayLayer.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

using Calls = std::vector<std::string>;

class FrameRendererTest : public testing::Test {
protected:
    CallLog calls;
    std::unique_ptr<ScriptedDisplayLayer> owned = std::make_unique<ScriptedDisplayLayer>(calls);
    ScriptedDisplayLayer& layer = *owned;
    FrameRenderer renderer{std::move(owned)};
    SampleBufferPointer sample = std::make_shared<ScriptedSample>("a", 1);
};

TEST_F(FrameRendererTest, TheViewHostsTheLayer) {
    EXPECT_EQ(&renderer.view().displayLayer(), &layer);
}

TEST_F(FrameRendererTest, ShowsWithoutFlushing) {
    renderer.display(sample);
    EXPECT_EQ(calls.take(), Calls{"show a"});
    layer.currentStatus = DisplayLayerStatus::unknown;
    renderer.display(sample);
    EXPECT_EQ(calls.take(), Calls{"show a"});
}

TEST_F(FrameRendererTest, FlushesAFailedLayerFirst) {
    layer.currentStatus = DisplayLayerStatus::failed;
    renderer.display(sample);
    EXPECT_EQ(calls.take(), (Calls{"flush", "show a"}));
}

TEST_F(FrameRendererTest, FlushEmptiesTheLayer) {
    renderer.display(sample);
    renderer.flush();
    EXPECT_EQ(layer.shown, std::nullopt);
}

} // namespace
} // namespace kestrove
