#include "App/KestroveApp.h"
#include "App/X11Desktop/X11Desktop.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Platform/Linux/JournalLog.h"
#include "Platform/Linux/Session/UserSession.h"
#include "Platform/Linux/TerminationSignals.h"
#include "Platform/Qt/QtApplicationObject.h"
#include "Platform/Qt/QtDescriptorWatching.h"
#include "Platform/Qt/QtMainLoop.h"
#include "Platform/X11/SingleInstance.h"
#include "Platform/X11/WindowManagerRequests.h"
#include "UI/Icons/SymbolIcon.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace {

using namespace kestrove;

constexpr const char* programName = "kestrove";

int fail(const std::string& reason) {
    std::fprintf(stderr, "%s: Xサーバーに接続できないため起動できません (%s)\n", programName,
                 reason.c_str());
    return 1;
}

/// Of a first instance that is just starting on a busy machine; it answers when it is ready.
constexpr std::chrono::seconds patienceWithFirstInstance{10};

int failWithoutAnswer() {
    std::fprintf(stderr, "%s: すでに起動しているKestroveが応答しません\n", programName);
    return 1;
}

/// The option of the entry that starts the program at login, and that of session managers which
/// restore what ran when the last session ended.
x11::StartedBy startedBy(std::span<char*> arguments) {
    const bool isBySession = std::ranges::any_of(arguments, [](std::string_view argument) {
        return argument == "--autostart" || argument == "-session";
    });
    return isBySession ? x11::StartedBy::session : x11::StartedBy::user;
}

/// What Qt reads at its start.
void prepareQt() {
    // The adapters are those of X: Qt must be on the same desktop, also where it would prefer
    // another one.
    qputenv("QT_QPA_PLATFORM", "xcb");
    // X has one coordinate space of pixels, and so have we. Qt's own scaling would give it another
    // one, with gaps between the screens. Texts keep to the desktop's resolution without it.
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    qunsetenv("QT_SCALE_FACTOR");
    qunsetenv("QT_SCREEN_SCALE_FACTORS");
}

} // namespace

int main(int argumentCount, char** arguments) {
    // Before Qt, which ends the process without a word of ours when there is no server.
    if (const auto reason = x11::whyUnreachable())
        return fail(*reason);
    x11::SingleInstance instance(KestroveApp::bundleIdentifier);
    const auto by = startedBy({arguments, static_cast<std::size_t>(argumentCount)});
    switch (instance.claim(patienceWithFirstInstance, by)) {
    case x11::InstanceClaim::first:
        break;
    case x11::InstanceClaim::handedOver:
        return 0;
    case x11::InstanceClaim::unanswered:
        return failWithoutAnswer();
    }
    prepareQt();
    // Becomes the class of our windows, by which desktops join them to the application.
    QCoreApplication::setApplicationName(KestroveApp::bundleIdentifier);
    QGuiApplication::setDesktopFileName(KestroveApp::bundleIdentifier);
    QtApplicationObject qt(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    // Window managers without icon themes show this one; it is the one that is installed, too.
    QApplication::setWindowIcon(symbolIcon("Kestrove"));

    QtMainLoop loop;
    QtDescriptorWatching watching;
    const auto log = makeSystemLog(programName);
    FileUserDefaults defaults(FileUserDefaults::defaultFile(programName),
                              [&log](LogLevel level, std::string_view line) {
                                  log->write(KestroveApp::bundleIdentifier, "", level, line);
                              });
    UserSession session(loop, watching, *log, KestroveApp::bundleIdentifier);
    const auto desktop = X11Desktop::open(loop, watching, session.signals);
    if (!desktop)
        return fail(desktop.error().description);

    KestroveApp app({loop, *log, defaults, **desktop});
    const TerminationSignals signals(watching, [&app] { app.delegate().terminate(); });
    loop.post([&app] { app.delegate().applicationDidFinishLaunching(); });
    const auto inTheLoop = [&app, &loop](void (AppDelegate::*call)()) {
        return [&app, &loop, call] { loop.post([&app, call] { (app.delegate().*call)(); }); };
    };
    qt.quitRequested = inTheLoop(&AppDelegate::terminate);
    instance.listen(watching, inTheLoop(&AppDelegate::applicationStartedAgain),
                    inTheLoop(&AppDelegate::terminate));
    return QApplication::exec();
}
