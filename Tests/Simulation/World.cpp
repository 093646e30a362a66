#include "Tests/Simulation/World.h"

#include "Tests/Simulation/Report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <utility>

namespace kestrove::simulation {

namespace {

/// Short enough that nothing is seen in between that no look catches.
constexpr Seconds lookEvery{0.005};

/// What becomes of an operation of the capture service.
constexpr const char* answers = "answers";
constexpr const char* failsAtOnce = "fails at once";
constexpr const char* isHeld = "is held";
constexpr const char* answersSoon = "answers soon";
constexpr const char* failsSoon = "fails soon";
constexpr const char* answersLate = "answers late";
constexpr std::array outcomes{answers, failsAtOnce, isHeld, answersSoon, failsSoon, answersLate};

void reportCalls(const char* operation, const char* outcome, std::uint64_t calls) {
    Report::ofThisProcess().count(fmt::format("point: {} {}", operation, outcome), calls);
}

} // namespace

World::World() {
    m_desktop.addDisplay({.displayID = m_nextDisplay++, .frame = {0, 0, 1440, 900}});
    m_desktop.addDisplay({.displayID = m_nextDisplay++, .frame = {1440, 0, 1920, 1080}});
    apply({.kind = StepKind::launchApplication});
    apply({.kind = StepKind::openWindow, .a = 1, .b = 2});
    restart();
}

World::~World() {
    m_checkers.reset();
    m_program.reset();
    apply({.kind = StepKind::releaseOperations});
    m_loop.runUntilIdle();
    for (auto& operation : m_operations)
        countCalls(operation);
}

void World::restart() {
    m_checkers.reset();
    m_program.reset();
    m_program = std::make_unique<Program>(m_desktop);
    m_checkers = std::make_unique<Checkers>(m_desktop, *m_program);
    m_loop.post([program = m_program.get(), this] {
        if (m_program.get() == program)
            program->didFinishLaunching();
    });
}

void World::perform(const Step& step) {
    apply(step);
    check();
    pause(step);
}

void World::apply(const Step& step) {
    if (step.kind <= StepKind::changeDisplay)
        applyToDisplays(step);
    else if (step.kind <= StepKind::quitApplication)
        applyToApplications(step);
    else if (step.kind <= StepKind::retitleWindow)
        applyToWindows(step);
    else if (step.kind <= StepKind::chooseGrantOnRequest)
        applyToSession(step);
    else if (step.kind <= StepKind::freeDisk)
        applyToServices(step);
    else
        applyByHand(step);
}

std::vector<World::PlannedOperation> World::makeOperations() {
    auto& capture = m_desktop.capture();
    std::vector<PlannedOperation> operations{
        {.operation = &capture.shareableContent, .name = "shareableContent"},
        {.operation = &capture.startCapture, .name = "startCapture"},
        {.operation = &capture.stopCapture, .name = "stopCapture"},
        {.operation = &capture.updateContentFilter, .name = "updateContentFilter"},
        {.operation = &capture.updateConfiguration, .name = "updateConfiguration"},
        {.operation = &capture.captureImage, .name = "captureImage"},
        {.operation = &capture.addScreenOutput, .name = "addScreenOutput", .answersAtOnce = true}};
    for (auto& operation : operations)
        operation.plan = answers;
    // A point that no run reaches has its line, too.
    for (const auto& operation : operations) {
        for (const auto* const outcome : outcomes) {
            if (!operation.answersAtOnce || outcome == failsAtOnce || outcome == answers)
                reportCalls(operation.name, outcome, 0);
        }
    }
    return operations;
}

void World::countCalls(PlannedOperation& operation) {
    const int calls = operation.operation->callCount();
    reportCalls(operation.name, operation.plan,
                static_cast<std::uint64_t>(calls - operation.callsBeforePlan));
    operation.callsBeforePlan = calls;
}

void World::plan(PlannedOperation& operation, const char* name, SimulatedOutcome outcome) {
    countCalls(operation);
    operation.plan = name;
    operation.operation->always(std::move(outcome));
}

void World::planOperation(const Step& step) {
    auto& operation = m_operations[step.a % m_operations.size()];
    const PlatformError error("simulated trouble", 7, "as planned");
    const Seconds delay(step.b % 300 / 1000.0);
    switch (step.b % 6) {
    case 0:
        plan(operation, failsAtOnce, SimulatedOutcome::fails(error));
        return;
    case 1:
        plan(operation, answers, SimulatedOutcome::succeeds());
        return;
    default:
        break;
    }
    if (operation.answersAtOnce)
        return;
    switch (step.b % 6) {
    case 2:
        plan(operation, isHeld, SimulatedOutcome::held());
        return;
    case 3:
        plan(operation, answersSoon, SimulatedOutcome::succeeds(delay));
        return;
    case 4:
        plan(operation, failsSoon, SimulatedOutcome::fails(error, delay));
        return;
    default:
        plan(operation, answersLate, SimulatedOutcome::succeeds(Seconds(2.0)));
        return;
    }
}

void World::applyToServices(const Step& step) {
    switch (step.kind) {
    case StepKind::planOperation:
        planOperation(step);
        return;
    case StepKind::releaseOperations:
        for (auto& each : m_operations) {
            plan(each, answers, SimulatedOutcome::succeeds());
            if (each.operation->heldCount() > 0)
                each.operation->release();
        }
        return;
    case StepKind::endStreams:
        m_desktop.capture().endAllStreams(PlatformError("simulated trouble", 8, "ended"));
        return;
    case StepKind::failDisplayLayer:
        m_program->displayLayer().fail();
        return;
    case StepKind::makeWindowListUnreadable:
        m_desktop.setWindowListReadable(false);
        return;
    case StepKind::makeWindowListReadable:
        m_desktop.setWindowListReadable(true);
        return;
    case StepKind::fillDisk:
        m_desktop.defaults().setWritable(false);
        return;
    default:
        m_desktop.defaults().setWritable(true);
        return;
    }
}

void World::pause(const Step& step) {
    switch (step.pause) {
    case Pause::none:
    case Pause::count:
        return;
    case Pause::fewOperations:
        runOperations(1 + step.b % 6);
        return;
    case Pause::untilIdle:
        runUntilIdle();
        return;
    case Pause::milliseconds:
        run(Seconds(0.005 * (1 + step.b % 20)));
        return;
    case Pause::moment:
        run(Seconds(0.3));
        return;
    case Pause::seconds:
        run(Seconds(5.5));
        return;
    }
}

void World::runOperations(std::uint32_t count) {
    for (std::uint32_t index = 0; index < count && m_loop.runOne(); ++index)
        check();
}

void World::runUntilIdle() {
    while (!m_failure && m_loop.runOne())
        check();
    note(m_checkers->whenIdle());
    note(m_checkers->afterUse());
}

void World::run(Seconds duration) {
    runUntilIdle();
    const auto looks = std::lround(duration / lookEvery);
    for (long look = 0; look < looks && !m_failure; ++look) {
        m_loop.advance(lookEvery);
        check();
        note(m_checkers->whenIdle());
    }
}

void World::check() {
    note(m_checkers->always());
}

void World::note(std::optional<Failure> failure) {
    if (!m_failure)
        m_failure = std::move(failure);
}

void World::calmDown() {
    apply({.kind = StepKind::freeDisk});
    apply({.kind = StepKind::releaseOperations});
    m_loop.setDelayOfQueues(Seconds(0));
    apply({.kind = StepKind::makeWindowListReadable});
    m_desktop.setRecordingAllowed(true);
    // In this order: only who unlocks says that the session is not locked.
    m_desktop.wakeScreens();
    m_desktop.becomeSession();
    if (m_desktop.displays().empty())
        apply({.kind = StepKind::plugDisplay});
    // Choices made on the full disk are stored with the next choice.
    auto& settings = m_program->settings();
    settings.followMode.set(settings.followMode.get());
    settings.targetFPS.set(settings.targetFPS.get());
    settings.alwaysOnTop.set(settings.alwaysOnTop.get());
    settings.hideOutputWindow.set(settings.hideOutputWindow.get());
    settings.manualSources.set(settings.manualSources.get());
    useHotKeysInPeace();
    run(Seconds(12));
    note(m_checkers->whenSettled());

    // The user goes on.
    m_program->controller().start();
    run(Seconds(6));
    m_desktop.movePointer(somePointOnADisplay({.a = 0, .b = 77}));
    run(Seconds(1));
    m_desktop.movePointer(somePointOnADisplay({.a = 1, .b = 99}));
    run(Seconds(1));
    // Windows that move by themselves are not followed, only the focus is.
    m_desktop.activateApplication({});
    if (!m_applications.empty())
        m_desktop.activateApplication(m_applications.front());
    run(Seconds(1));
    note(m_checkers->whileSharing());
    m_program->controller().stop();
    run(Seconds(1));
    note(m_checkers->afterStop());
}

} // namespace kestrove::simulation
