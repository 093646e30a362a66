#include "UI/Composer/OutputContainerWidget.h"

#include "Tests/Support/QtSpin.h"
#include "UI/Composer/LayerHostWidget.h"
#include "UI/Composer/OutputContainer.h"
#include "UI/Composer/PlaceholderWidget.h"

#include <QBackingStore>
#include <QCoreApplication>
#include <QImage>
#include <QLabel>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace kestrove {
namespace {

class RecordingLayer final : public DisplayLayer {
public:
    void setHost(NativeViewHandle host) override { hosts.push_back(host); }
    void enqueue(SampleBufferPointer /*sample*/) override {}
    void flush() override {}
    DisplayLayerStatus status() const override { return DisplayLayerStatus::unknown; }

    std::vector<NativeViewHandle> hosts;
};

class OutputContainerWidgetTest : public testing::Test {
protected:
    OutputContainerWidgetTest() {
        container->resize(640, 360);
        container->show();
    }

    [[nodiscard]] QWidget& placeholder() const {
        return *container->findChild<PlaceholderWidget*>();
    }
    [[nodiscard]] QWidget& host() const { return *container->findChild<LayerHostWidget*>(); }
    [[nodiscard]] NativeViewHandle hostHandle() const { return host().winId(); }

    RecordingLayer layer;
    ContainerView view{layer};
    RecordingLayer otherLayer;
    ContainerView otherView{otherLayer};
    std::unique_ptr<OutputContainerWidget> container = std::make_unique<OutputContainerWidget>();
};

TEST_F(OutputContainerWidgetTest, ShowsThePlaceholderAtFirst) {
    const OutputContainer decides(*container);
    EXPECT_TRUE(placeholder().isVisible());
    EXPECT_FALSE(host().isVisible());
}

TEST_F(OutputContainerWidgetTest, HostsTheContentsLayerInPlaceOfThePlaceholder) {
    container->showContent(view);
    EXPECT_EQ(layer.hosts, std::vector{hostHandle()});
    EXPECT_NE(hostHandle(), container->window()->winId());
    EXPECT_TRUE(host().isVisible());
    EXPECT_FALSE(placeholder().isVisible());
}

TEST_F(OutputContainerWidgetTest, LetsGoOfWhatTheToolkitHasDrawnBeneathTheContent) {
    const auto& pixels = *container->backingStore();
    EXPECT_TRUE(spinUntil([&] { return pixels.size() == QSize(640, 360); }));
    container->showContent(view);
    QCoreApplication::processEvents();
    EXPECT_EQ(pixels.size(), QSize(1, 1));
    // What the toolkit draws anew it draws whole.
    container->showPlaceholder();
    EXPECT_TRUE(spinUntil([&] { return pixels.size() == QSize(640, 360); }));
}

TEST_F(OutputContainerWidgetTest, FollowsItsOwnSizeWithBoth) {
    container->showContent(view);
    container->resize(500, 400);
    EXPECT_EQ(host().geometry(), QRect(0, 0, 500, 400));
    EXPECT_EQ(placeholder().geometry(), QRect(0, 0, 500, 400));
}

TEST_F(OutputContainerWidgetTest, TakesTheLayerOutWithTheContent) {
    container->showContent(view);
    container->showPlaceholder();
    container->showPlaceholder();
    EXPECT_EQ(layer.hosts, (std::vector<NativeViewHandle>{hostHandle(), 0}));
    EXPECT_TRUE(placeholder().isVisible());
    EXPECT_FALSE(host().isVisible());
}

TEST_F(OutputContainerWidgetTest, ChangesFromOneContentToAnother) {
    container->showContent(view);
    container->showContent(otherView);
    EXPECT_EQ(layer.hosts, (std::vector<NativeViewHandle>{hostHandle(), 0}));
    EXPECT_EQ(otherLayer.hosts, std::vector{hostHandle()});
}

TEST_F(OutputContainerWidgetTest, TakesTheLayerOutBeforeTheHostGoes) {
    container->showContent(view);
    container.reset();
    ASSERT_EQ(layer.hosts.size(), 2U);
    EXPECT_EQ(layer.hosts.back(), 0U);
}

TEST_F(OutputContainerWidgetTest, SaysInTwoCentredLinesOnBlackThatNothingIsShared) {
    container->showPlaceholder();
    const auto* const label = placeholder().findChild<QLabel*>();
    EXPECT_EQ(
        label->text().toStdString(),
        "現在、画面は共有されていません\nメニューバーからソースを選択または再試行してください");
    EXPECT_EQ(label->alignment(), Qt::AlignCenter);
    EXPECT_DOUBLE_EQ(label->font().pointSizeF(), 10.5);

    const auto image = container->grab().toImage().convertToFormat(QImage::Format_RGB32);
    int written = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == qRgb(0, 0, 0))
                continue;
            ++written;
            ASSERT_NEAR(y, image.height() / 2.0, 40) << "not in the middle";
        }
    }
    EXPECT_GT(written, 100) << "nothing to read";
}

} // namespace
} // namespace kestrove
