#include "Platform/Simulated/SimulatedHotKeys.h"

#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <deque>
#include <utility>

namespace kestrove {

namespace {

HotKeyStatus takePlanned(std::deque<HotKeyStatus>& statuses) {
    if (statuses.empty())
        return 0;
    const auto status = statuses.front();
    statuses.pop_front();
    return status;
}

} // namespace

SimulatedHotKeys::SimulatedHotKeys(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_worldChanges(desktop.keyboard().onPressed([this](const auto& identifier) {
        m_scope.post([this, identifier] { m_pressed.emit(identifier); });
    }))
    , m_scope(desktop.loop()) {}

SimulatedHotKeys::~SimulatedHotKeys() {
    for (const auto reference : m_references)
        m_desktop.keyboard().remove(reference);
}

std::expected<Subscription, HotKeyStatus> SimulatedHotKeys::installHandler(Handler handler) {
    m_desktop.requireMainThread("installHandler");
    if (const auto status = takePlanned(m_desktop.keyboard().nextInstallStatuses))
        return std::unexpected(status);
    return m_pressed.subscribe(std::move(handler));
}

std::expected<HotKeyReference, HotKeyStatus>
SimulatedHotKeys::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                 HotKeyIdentifier identifier) {
    m_desktop.requireMainThread("registerHotKey");
    ++m_registerCallCount;
    if (const auto status = takePlanned(m_desktop.keyboard().nextRegisterStatuses))
        return std::unexpected(status);
    const auto added = m_desktop.keyboard().add({keyCode, modifiers}, identifier);
    if (added)
        m_references.insert(*added);
    return added;
}

HotKeyStatus SimulatedHotKeys::unregisterHotKey(HotKeyReference reference) {
    m_desktop.requireMainThread("unregisterHotKey");
    ++m_unregisterCallCount;
    if (!m_references.contains(reference))
        abortOnMisuse("unregistering a hot key that is not registered");
    if (const auto status = takePlanned(m_desktop.keyboard().nextUnregisterStatuses)) {
        m_desktop.keyboard().refuseToRemove(reference);
        return status;
    }
    m_references.erase(reference);
    m_desktop.keyboard().remove(reference);
    return 0;
}

} // namespace kestrove
