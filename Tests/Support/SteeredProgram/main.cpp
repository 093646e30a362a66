// The program itself, whose settings a test changes while it runs: by lines on the standard input,
// or in the named pipe that is the first argument.

#include "App/KestroveApp.h"
#include "App/X11Desktop/X11Desktop.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Platform/Linux/JournalLog.h"
#include "Platform/Qt/QtDescriptorWatching.h"
#include "Platform/Qt/QtMainLoop.h"

#include <QApplication>

#include <array>
#include <fcntl.h>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>

namespace {

using namespace kestrove;

/// Calls what belongs to each line as it comes; the end of the input ends the program.
class Lines {
public:
    using Commands = std::map<std::string, std::function<void()>, std::less<>>;

    Lines(DescriptorWatching& watching, int descriptor, Commands commands)
        : m_commands(std::move(commands))
        , m_descriptor(descriptor)
        , m_readable(watching.watchReadable(descriptor, [this] { read(); })) {}

private:
    void read() {
        std::array<char, 256> bytes{};
        const auto count = ::read(m_descriptor, bytes.data(), bytes.size());
        if (count <= 0) {
            m_readable.cancel();
            QCoreApplication::quit();
            return;
        }
        m_text.append(bytes.data(), static_cast<std::size_t>(count));
        for (auto end = m_text.find('\n'); end != std::string::npos; end = m_text.find('\n')) {
            const auto line = m_text.substr(0, end);
            m_text.erase(0, end + 1);
            m_commands.at(line)();
        }
    }

    Commands m_commands;
    int m_descriptor;
    std::string m_text;
    Subscription m_readable;
};

} // namespace

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    const QApplication qt(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    QtMainLoop loop;
    QtDescriptorWatching watching;
    const auto log = makeSystemLog("kestrove");
    FileUserDefaults defaults(FileUserDefaults::defaultFile("kestrove"));
    SessionSignals session;
    const auto desktop = X11Desktop::open(loop, watching, session);
    if (!desktop)
        return 1;
    KestroveApp app({loop, *log, defaults, **desktop});
    auto& settings = app.settings();
    const int descriptor =
        argumentCount > 1 ? ::open(arguments[1], O_RDONLY | O_CLOEXEC) : STDIN_FILENO;
    const Lines lines(watching, descriptor,
                      {{"hide", [&] { settings.hideOutputWindow.set(true); }},
                       {"unhide", [&] { settings.hideOutputWindow.set(false); }},
                       {"float", [&] { settings.alwaysOnTop.set(true); }},
                       {"sink", [&] { settings.alwaysOnTop.set(false); }},
                       {"show", [&] { app.outputWindow().show(); }},
                       {"start", [&] { app.controller().start(); }},
                       {"stop", [&] { app.controller().stop(); }}});
    loop.post([&app] { app.delegate().applicationDidFinishLaunching(); });
    return QApplication::exec();
}
