// A desktop entry that any package may have installed, and the name an application is asked by.
#include "Platform/Linux/DesktopEntries.h"
#include "Tests/Fuzzing/Promise.h"
#include "Tests/Support/Processes/TemporaryFolder.h"

#include <filesystem>
#include <fstream>

void kestrove::fuzzing::examine(Input input) {
    static const test::TemporaryFolder folder;
    const auto applications = folder.path() / "applications";
    std::filesystem::create_directories(applications);
    const auto text = input.text();
    const auto end = text.find('\0');
    std::ofstream(applications / "org.example.Viewer.desktop", std::ios::binary)
        << text.substr(0, end);

    DesktopEntries entries({folder.path()});
    const auto byIdentifier = entries.applicationName("org.example.viewer");
    promise(!byIdentifier || !byIdentifier->empty(), "a name is not empty");
    if (end == std::string_view::npos)
        return;
    const auto byClass = entries.applicationName(text.substr(end + 1));
    promise(!byClass || byClass == byIdentifier, "the one entry has one name");
}
