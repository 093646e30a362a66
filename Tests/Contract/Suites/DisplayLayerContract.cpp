#include "Tests/Contract/ContractSuites.h"
#include "Tests/Contract/Suites/SampleCollector.h"

#include <optional>
#include <vector>

namespace kestrove::contract {

namespace {

constexpr Color red{220, 30, 30};
constexpr Color black{};

/// A sample that no platform made.
class ForeignSample final : public SampleBuffer {
public:
    SampleType type() const override { return SampleType::screen; }
    bool isValid() const override { return true; }
    std::uint64_t generation() const override { return 0; }
    const std::optional<std::vector<SampleAttachments>>& attachments() const override {
        return m_attachments;
    }

private:
    std::optional<std::vector<SampleAttachments>> m_attachments;
};

StreamConfiguration twiceAsWideAsHigh() {
    StreamConfiguration configuration;
    configuration.minimumFrameInterval = {1, 30};
    configuration.width = 400;
    configuration.height = 200;
    return configuration;
}

/// A sample of a red window, with the stream it comes from.
struct RedSample {
    std::unique_ptr<CollectedStream> stream;
    SampleBufferPointer sample;
};

} // namespace

/// A view of 200 by 200 pixels with a layer in it.
class DisplayLayerInView {
public:
    explicit DisplayLayerInView(DesktopUnderTest& desktop)
        : m_desktop(desktop)
        , view(desktop.makeView({200, 200}))
        , layer(desktop.makeDisplayLayer()) {
        layer->setHost(view);
    }
    DisplayLayerInView(const DisplayLayerInView&) = delete;
    DisplayLayerInView& operator=(const DisplayLayerInView&) = delete;
    ~DisplayLayerInView() {
        layer->setHost(0);
        m_desktop.destroyView(view);
    }

    [[nodiscard]] Color colorAt(double x, double y) const {
        return m_desktop.colorInView(view, {x, y});
    }

private:
    DesktopUnderTest& m_desktop;

public:
    NativeViewHandle view;
    std::unique_ptr<DisplayLayer> layer;
};

class DisplayLayerFrames {
public:
    DisplayLayerFrames(DesktopUnderTest& desktop, WindowID window)
        : m_stream(desktop.loop(), desktop.screenCapture(), WindowFilter(window),
                   twiceAsWideAsHigh()) {}
    [[nodiscard]] CaptureStream& stream() const { return *m_stream.stream; }
    [[nodiscard]] SampleBufferPointer latest() const { return m_stream.collector->latest(); }

private:
    CollectedStream m_stream;
};

TEST_P(DisplayLayerContract, ShowsAFrameFittedAndCentredOnBlack) {
    const auto window = openWindow({.frame = {100, 100, 400, 200}, .color = red});
    desktop().settle();
    DisplayLayerFrames frames(desktop(), window);
    (void)run(frames.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return frames.latest() != nullptr; }));
    const DisplayLayerInView shown(desktop());
    EXPECT_EQ(shown.layer->status(), DisplayLayerStatus::unknown);
    EXPECT_PRED2(isNear, shown.colorAt(100, 100), black);
    shown.layer->enqueue(frames.latest());
    EXPECT_EQ(shown.layer->status(), DisplayLayerStatus::rendering);
    EXPECT_TRUE(waitUntil([&] { return isNear(shown.colorAt(100, 100), red); }));
    EXPECT_PRED2(isNear, shown.colorAt(3, 100), red);
    EXPECT_PRED2(isNear, shown.colorAt(100, 20), black);
    EXPECT_PRED2(isNear, shown.colorAt(100, 180), black);
}

TEST_P(DisplayLayerContract, IsBlackWhenAFlushReturns) {
    const auto window = openWindow({.color = red});
    desktop().settle();
    DisplayLayerFrames frames(desktop(), window);
    (void)run(frames.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return frames.latest() != nullptr; }));
    const DisplayLayerInView shown(desktop());
    shown.layer->enqueue(frames.latest());
    ASSERT_TRUE(waitUntil([&] { return isNear(shown.colorAt(100, 100), red); }));
    shown.layer->flush();
    EXPECT_PRED2(isNear, shown.colorAt(100, 100), black);
    EXPECT_EQ(shown.layer->status(), DisplayLayerStatus::unknown);
    desktop().settle();
    EXPECT_PRED2(isNear, shown.colorAt(100, 100), black);
}

TEST_P(DisplayLayerContract, KeepsItsFrameWhenTheStreamHasGone) {
    const auto window = openWindow({.color = red});
    desktop().settle();
    const DisplayLayerInView shown(desktop());
    {
        DisplayLayerFrames frames(desktop(), window);
        (void)run(frames.stream().startCapture());
        ASSERT_TRUE(waitUntil([&] { return frames.latest() != nullptr; }));
        shown.layer->enqueue(frames.latest());
    }
    desktop().closeWindow(window);
    desktop().settle();
    EXPECT_PRED2(isNear, shown.colorAt(100, 100), red);
}

TEST_P(DisplayLayerContract, KeepsItsFrameWithoutAHost) {
    const auto window = openWindow({.color = red});
    desktop().settle();
    DisplayLayerFrames frames(desktop(), window);
    (void)run(frames.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return frames.latest() != nullptr; }));
    const auto layer = desktop().makeDisplayLayer();
    layer->enqueue(frames.latest());
    const auto first = desktop().makeView({200, 200});
    layer->setHost(first);
    EXPECT_TRUE(waitUntil([&] { return isNear(desktop().colorInView(first, {100, 100}), red); }));
    layer->setHost(0);
    desktop().destroyView(first);
    const auto second = desktop().makeView({200, 200});
    layer->setHost(second);
    EXPECT_TRUE(waitUntil([&] { return isNear(desktop().colorInView(second, {100, 100}), red); }));
    layer->setHost(0);
    desktop().destroyView(second);
}

TEST_P(DisplayLayerContract, FailsOnAForeignSampleUntilItIsFlushed) {
    const auto window = openWindow({.color = red});
    desktop().settle();
    DisplayLayerFrames frames(desktop(), window);
    (void)run(frames.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return frames.latest() != nullptr; }));
    const DisplayLayerInView shown(desktop());
    shown.layer->enqueue(std::make_shared<ForeignSample>());
    EXPECT_EQ(shown.layer->status(), DisplayLayerStatus::failed);
    shown.layer->enqueue(frames.latest());
    EXPECT_EQ(shown.layer->status(), DisplayLayerStatus::failed);
    shown.layer->flush();
    shown.layer->enqueue(frames.latest());
    EXPECT_EQ(shown.layer->status(), DisplayLayerStatus::rendering);
    EXPECT_TRUE(waitUntil([&] { return isNear(shown.colorAt(100, 100), red); }));
}

} // namespace kestrove::contract
