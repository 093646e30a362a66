// The suites of the adapters that an X server answers for.
#include "Tests/Contract/ContractSuites.h"
#include "Tests/Contract/X11/X11DesktopUnderTest.h"

namespace kestrove::contract {
namespace {

const DesktopFactory& x11Desktop() {
    static const DesktopFactory factory{"X11",
                                        [] { return std::make_unique<X11DesktopUnderTest>(); }};
    return factory;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Desktop, ScreensContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, PointerContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, WindowServerContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, WorkspaceContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, SessionContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, ScreenCaptureContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, CaptureStreamContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, DisplayLayerContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, HotKeysContract, testing::Values(x11Desktop()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, ScreenRecordingAccessContract, testing::Values(x11Desktop()),
                         nameOf);

// These are not X's.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(UserDefaultsContract);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ApplicationContract);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SystemLogContract);

} // namespace kestrove::contract
