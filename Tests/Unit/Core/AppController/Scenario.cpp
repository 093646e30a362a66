#include "Tests/Unit/Core/AppController/Scenario.h"

#include <ostream>

namespace kestrove {

namespace {

const PlatformError refused("X11", 11);

void start(ControllerBench& bench) {
    bench.controller->start();
}

void run(ControllerBench& bench) {
    bench.create();
    bench.startAndRun();
}

} // namespace

std::vector<Scenario> scenarios() {
    return {
        {"start", [](auto& bench) { bench.create(); }, start},
        {"start by hand among several",
         [](auto& bench) { bench.createManual({window5, display2}); }, start},
        {"start with a fallback",
         [](auto& bench) {
             bench.create();
             bench.engine.failFor(display1, refused);
         },
         start},
        {"start that fails",
         [](auto& bench) {
             bench.create();
             bench.engine.failFor(display1, EngineError::displayNotFound);
             bench.engine.failFor(display2, refused);
         },
         start},
        {"start without a source",
         [](auto& bench) {
             bench.create();
             bench.lister.snapshot = {};
         },
         start},
        {"start while the permission goes",
         [](auto& bench) {
             bench.create();
             bench.lister.failure = refused;
         },
         [](auto& bench) {
             bench.controller->start();
             bench.permission = ScreenRecordingPermission::revoked;
         }},
        {"switch", run, [](auto& bench) { bench.pointAt(2); }},
        {"switch there and back", run,
         [](auto& bench) {
             bench.pointAt(2);
             bench.pointAt(1);
         }},
        {"switch that fails with a fallback",
         [](auto& bench) {
             run(bench);
             bench.engine.failFor(display2, refused);
         },
         [](auto& bench) { bench.pointAt(2); }},
        {"switch that fails without the permission",
         [](auto& bench) {
             run(bench);
             bench.engine.failFor(display2, refused);
             bench.permission = ScreenRecordingPermission::revoked;
         },
         [](auto& bench) { bench.pointAt(2); }},
        {"resume",
         [](auto& bench) {
             bench.createManual({window5, window6});
             bench.startAndRun();
             bench.engine.endStream();
         },
         [](auto& bench) { bench.scheduler.tick(); }},
        {"resume that fails",
         [](auto& bench) {
             bench.createManual({window5, window6});
             bench.startAndRun();
             bench.engine.endStream();
             bench.engine.failFor(window5, EngineError::windowNotFound);
         },
         [](auto& bench) { bench.scheduler.tick(); }},
        {"active window closed",
         [](auto& bench) {
             bench.createManual({window5, window6});
             bench.startAndRun();
             bench.existence.answers[5] = WindowExistence::terminated;
         },
         [](auto& bench) { bench.scheduler.tick(); }},
        {"only window closed",
         [](auto& bench) {
             bench.createManual({window5});
             bench.startAndRun();
             bench.existence.answers[5] = WindowExistence::terminated;
         },
         [](auto& bench) { bench.scheduler.tick(); }},
        {"pick and unpick",
         [](auto& bench) {
             bench.createManual({display1});
             bench.startAndRun();
         },
         [](auto& bench) {
             bench.settings->manualSources.set({window5});
             bench.settle();
             bench.settings->manualSources.set({});
         }},
    };
}

void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

} // namespace kestrove
