#include "Tests/Simulation/Theme.h"

namespace kestrove::simulation {

namespace {

constexpr std::uint64_t seedsPerTheme = 4;

// As `World` counts them.
constexpr std::uint32_t shareableContent = 0;
constexpr std::uint32_t startCapture = 1;
constexpr std::uint32_t stopCapture = 2;
constexpr std::uint32_t updateContentFilter = 3;
constexpr std::uint32_t updateConfiguration = 4;

const std::vector<Theme>& themes() {
    using enum StepKind;
    static const std::vector<Theme> all{
        // A session begins while what the last one asked for is still on its way.
        {{planOperation, start, stop, planOperation, start, movePointer, refresh, releaseOperations,
          stop},
         {shareableContent, startCapture, startCapture}},
        // One that has lost its permission stops while the next one begins. That its stream has
        // ended is heard of later than that nothing can be listed.
        {{start, slowQueues, planOperation, withdrawPermission, refresh, stop, givePermission,
          start, releaseOperations, stop},
         {stopCapture}},
        // Switches overtake each other.
        {{start, setFollowMode, movePointer, planOperation, toggleSource, movePointer,
          focusApplication, toggleSource, releaseOperations},
         {shareableContent, startCapture, updateContentFilter, updateConfiguration}},
        // A stream ends, and it is heard of when another one runs.
        {{start, slowQueues, planOperation, endStreams, stop, start, releaseOperations, stop},
         {stopCapture}},
        // Shortcuts come and go, several at once.
        {{editShortcut, takeOrGiveBackHotKey, refuseHotKeys, editShortcut, restoreShortcuts,
          takeOrGiveBackHotKey, refuseHotKeys, pressHotKey, restartProgram},
         {shareableContent}},
    };
    return all;
}

} // namespace

const Theme* themeOf(std::uint64_t seed) {
    if (seed % seedsPerTheme != 2)
        return nullptr;
    return &themes()[seed / seedsPerTheme % themes().size()];
}

} // namespace kestrove::simulation
