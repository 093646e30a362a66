// Every suite against the simulated desktop.
#include "Tests/Contract/ContractSuites.h"
#include "Tests/Contract/Simulated/SimulatedDesktopUnderTest.h"

namespace kestrove::contract {

namespace {

const DesktopFactory& simulated() {
    static const DesktopFactory factory{
        "Simulated", [] { return std::make_unique<SimulatedDesktopUnderTest>(); }};
    return factory;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Desktop, ScreensContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, PointerContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, WindowServerContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, WorkspaceContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, SessionContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, ScreenCaptureContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, CaptureStreamContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, DisplayLayerContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, HotKeysContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, UserDefaultsContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, ApplicationContract, testing::Values(simulated()), nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, ScreenRecordingAccessContract, testing::Values(simulated()),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Desktop, SystemLogContract, testing::Values(simulated()), nameOf);

} // namespace kestrove::contract
