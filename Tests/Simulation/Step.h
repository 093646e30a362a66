#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace kestrove::simulation {

/// What happens in one step: on the desktop, to the services that the program uses, or by the
/// user's hand in the program.
enum class StepKind : std::uint8_t {
    plugDisplay,
    unplugDisplay,
    changeDisplay,
    launchApplication,
    quitApplication,
    openWindow,
    reopenWindow,
    closeWindow,
    showOrHideWindow,
    raiseWindow,
    moveWindow,
    paintWindow,
    retitleWindow,
    movePointer,
    focusApplication,
    focusNothing,
    focusProgram,
    resignSession,
    becomeSession,
    sleepScreens,
    wakeScreens,
    withdrawPermission,
    givePermission,
    chooseGrantOnRequest,
    planOperation,
    releaseOperations,
    endStreams,
    failDisplayLayer,
    makeWindowListUnreadable,
    makeWindowListReadable,
    fillDisk,
    freeDisk,
    start,
    stop,
    setFollowMode,
    toggleSource,
    setManualSources,
    setFramesPerSecond,
    toggleHidden,
    toggleAlwaysOnTop,
    refresh,
    resizeOutput,
    miniaturizeOutput,
    openMenu,
    runMenuCommand,
    clickInMenu,
    openPicker,
    pickInPicker,
    editShortcut,
    restoreShortcuts,
    pressHotKey,
    takeOrGiveBackHotKey,
    refuseHotKeys,
    restartProgram,
    corruptSettingsAndRestart,
    slowQueues,
    count,
};

/// How much of what follows from a step happens before the next one.
enum class Pause : std::uint8_t {
    none,
    /// A few operations of the main loop: the next step falls between two awaits.
    fewOperations,
    untilIdle,
    milliseconds,
    /// Past the debounce intervals.
    moment,
    /// Past a refresh.
    seconds,
    count,
};

/// A step is data, so that a run can be replayed, printed and shortened. Its numbers say which of
/// what is there it concerns, by remainder: it has a meaning in every world.
struct Step {
    StepKind kind = StepKind::movePointer;
    Pause pause = Pause::none;
    std::uint32_t a = 0;
    std::uint32_t b = 0;

    bool operator==(const Step&) const = default;
};

using Steps = std::vector<Step>;

/// The same steps for the same seed, for ever and on every machine.
[[nodiscard]] Steps makeSteps(std::uint64_t seed);

[[nodiscard]] std::string nameOf(StepKind kind);
/// As a line of a trace.
[[nodiscard]] std::string describe(const Step& step);

/// The steps of a trace's lines: each may have its number before it. Lines that begin with `#` and
/// empty ones are passed over. Absent when a line is no step.
[[nodiscard]] std::optional<Steps> readSteps(std::istream& trace);

} // namespace kestrove::simulation
