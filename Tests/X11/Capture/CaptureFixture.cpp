#include "Tests/X11/Capture/CaptureFixture.h"

#include "Async/MainLoopSerialQueue.h"
#include "Tests/Support/XServer/Reply.h"

#include <utility>

namespace kestrove::test {
namespace {

/// By turns of two connections: the server goes on with the same one for a while as long as it
/// asks, and comes to others, and to what it does when nobody asks, in between.
constexpr int enoughRounds = 20;

} // namespace

CaptureDesktop::CaptureDesktop(const XDesktop::Options& options)
    : desktop(options)
    , applications(DesktopEntries({}))
    , m_listener(xcb_connect(desktop.displayName().c_str(), nullptr))
    , m_tasks(loop) {
    auto opened = x11::Connection::open(loop, loop, desktop.displayName());
    EXPECT_TRUE(opened) << opened.error().description;
    connection = std::move(*opened);
    monitors = std::make_unique<x11::MonitorLayout>(*connection);
    motion = std::make_unique<x11::RawMotion>(*connection);
    capture =
        std::make_unique<x11::X11ScreenCapture>(*connection, *monitors, applications, *motion);
    layer = std::make_unique<x11::X11DisplayLayer>(*connection);
}

StreamConfiguration CaptureDesktop::configurationAt(int framesPerSecond, bool showsCursor) {
    StreamConfiguration configuration;
    configuration.minimumFrameInterval = {1, framesPerSecond};
    configuration.queueDepth = 6;
    configuration.showsCursor = showsCursor;
    return configuration;
}

DisplayFilter CaptureDesktop::display(std::size_t index, std::vector<WindowID> excluded) {
    return {monitors->monitors().at(index).id, std::move(excluded)};
}

void CaptureDesktop::openOutput(const xcb_rectangle_t& geometry) {
    layer->setHost(0);
    m_output = std::make_unique<TestWindow>(
        desktop.displayName(),
        TestWindow::Options{.geometry = geometry, .overrideRedirect = true, .title = "output"});
    layer->setHost(m_output->id());
}

void CaptureDesktop::run(Task<void> task) {
    m_tasks.launch(std::move(task));
    EXPECT_TRUE(loop.spinUntil([this] { return m_tasks.isEmpty(); }));
}

void CaptureDesktop::start(ContentFilter filter, StreamConfiguration configuration) {
    stream = capture->makeStream(std::move(filter), configuration,
                                 [this](const PlatformError& error) { stops.push_back(error); });
    const auto added = stream->addScreenOutput(
        std::make_shared<MainLoopSerialQueue>(loop, "samples"), [this](SampleBufferPointer sample) {
            ++frames;
            layer->enqueue(std::move(sample));
        });
    EXPECT_TRUE(added);
    run(startStream(*stream));
    EXPECT_TRUE(m_outcome) << m_outcome.error().description;
}

Task<void> CaptureDesktop::startStream(CaptureStream& started) {
    m_outcome = co_await started.startCapture();
    framesWhenAnswered = frames;
}

std::expected<void, PlatformError> CaptureDesktop::outcomeOfStarting(CaptureStream& other) {
    run(startStream(other));
    return m_outcome;
}

void CaptureDesktop::moveOutput(int x, int y) {
    m_output->move(x, y);
}

void CaptureDesktop::resizeOutput(int width, int height) {
    m_output->resize(width, height);
}

std::uint32_t CaptureDesktop::requestCount() const {
    // Requests are numbered one after the other.
    return xcb_no_operation(connection->get()).sequence;
}

void CaptureDesktop::retarget(ContentFilter filter) {
    run(retargetStream(std::move(filter)));
    EXPECT_TRUE(m_outcome) << m_outcome.error().description;
}

Task<void> CaptureDesktop::retargetStream(ContentFilter filter) {
    m_outcome = co_await stream->updateContentFilter(std::move(filter));
}

void CaptureDesktop::reconfigure(StreamConfiguration configuration) {
    run(reconfigureStream(configuration));
    EXPECT_TRUE(m_outcome) << m_outcome.error().description;
}

Task<void> CaptureDesktop::reconfigureStream(StreamConfiguration configuration) {
    m_outcome = co_await stream->updateConfiguration(configuration);
    framesWhenAnswered = frames;
}

void CaptureDesktop::stop() {
    run(stopStream());
}

Task<void> CaptureDesktop::stopStream() {
    m_outcome = co_await stream->stopCapture();
}

PixelImage CaptureDesktop::output() const {
    return readPixels(desktop.connection(), m_output->id());
}

PixelImage CaptureDesktop::screen(const xcb_rectangle_t& part) const {
    return readPixels(desktop.connection(), desktop.root(), part);
}

testing::AssertionResult CaptureDesktop::outputBecomes(const PixelImage& expected,
                                                       std::string_view name, int tolerance) {
    (void)loop.spinUntil([&] { return areAlike(output(), expected, tolerance); });
    return samePixels(output(), expected, name, tolerance);
}

testing::AssertionResult CaptureDesktop::outputBecomesScreen(const xcb_rectangle_t& part,
                                                             std::string_view name) {
    settleScreen(part);
    return outputBecomes(screen(part), name);
}

void CaptureDesktop::settleScreen(const xcb_rectangle_t& part) {
    auto seen = screen(part);
    int quiet = 0;
    (void)loop.spinUntil([&] {
        auto now = screen(part);
        quiet = now.pixels == seen.pixels ? quiet + 1 : 0;
        seen = std::move(now);
        return quiet > 10;
    });
}

void CaptureDesktop::hearAll() {
    for (int round = 0; round < enoughRounds; ++round) {
        connection->synchronize();
        sync(desktop.connection());
        loop.runUntilIdle();
    }
}

void CaptureDesktop::listen() {
    for (int round = 0; round < enoughRounds; ++round) {
        sync(desktop.connection());
        sync(m_listener.get());
        // Whoever asked something by our connection may have read what was told meanwhile, for
        // which nothing would wake us up.
        connection->flush();
        loop.runUntilIdle();
    }
}

void CaptureDesktop::settle() {
    EXPECT_TRUE(loop.spinUntil([&] {
        const int before = frames;
        hearAll();
        return frames == before && !loop.hasTimers();
    }));
}

} // namespace kestrove::test
