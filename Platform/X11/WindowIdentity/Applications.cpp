#include "Platform/X11/WindowIdentity/Applications.h"

#include "Platform/Linux/Processes.h"

namespace kestrove::x11 {

void Applications::meet(std::span<const WindowIdentity> windows) {
    std::map<ProcessID, const WindowIdentity*> oldest;
    for (const auto& window : windows) {
        if (!window.processID || !window.bundleIdentifier)
            continue;
        // A client numbers its windows upwards.
        auto& known = oldest[*window.processID];
        if (!known || window.windowID < known->windowID)
            known = &window;
    }
    for (const auto& [process, window] : oldest) {
        const auto startTime = processStartTime(process);
        const auto known = m_known.find(process);
        const bool isKnown =
            known != m_known.end() && startTime && known->second.startTime == *startTime;
        if (!startTime || isKnown)
            continue;
        forgetEnded();
        m_known.insert_or_assign(process, Known{*startTime, *window->bundleIdentifier});
    }
}

void Applications::forgetEnded() {
    std::erase_if(m_known, [](const auto& each) {
        return processStartTime(each.first) != each.second.startTime;
    });
}

std::optional<std::string> Applications::bundleIdentifier(ProcessID process) {
    const auto known = m_known.find(process);
    if (known == m_known.end())
        return std::nullopt;
    if (processStartTime(process) != known->second.startTime)
        return std::nullopt;
    return known->second.bundleIdentifier;
}

std::optional<CapturableApplication> Applications::owner(const WindowIdentity& window) {
    if (!window.processID && !window.bundleIdentifier)
        return std::nullopt;
    auto identifier = window.processID ? bundleIdentifier(*window.processID) : std::nullopt;
    if (!identifier)
        identifier = window.bundleIdentifier;
    CapturableApplication application;
    application.bundleIdentifier = identifier.value_or(std::string());
    application.processID = window.processID.value_or(0);
    application.applicationName = nameOf(window, application.bundleIdentifier);
    return application;
}

std::string Applications::nameOf(const WindowIdentity& window,
                                 const std::string& bundleIdentifier) {
    // By what the window itself says first: of an office suite, its part.
    for (const auto& key : {window.bundleIdentifier, window.applicationClass}) {
        if (const auto name = key ? m_entries.applicationName(*key) : std::nullopt)
            return *name;
    }
    return window.applicationClass.value_or(bundleIdentifier);
}

} // namespace kestrove::x11
