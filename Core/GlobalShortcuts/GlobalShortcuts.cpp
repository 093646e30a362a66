#include "Core/GlobalShortcuts/GlobalShortcuts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

namespace kestrove {

namespace {

using Kind = ShortcutFailure::Kind;

template <class Map>
auto* find(Map& map, ShortcutAction action) {
    const auto found = map.find(action);
    return found == map.end() ? nullptr : &found->second;
}

template <class Map>
ShortcutActions keys(const Map& map) {
    ShortcutActions actions;
    for (const auto& entry : map)
        actions.insert(entry.first);
    return actions;
}

ShortcutFailures invalidActions(const ShortcutHandlers& handlers,
                                const ShortcutBindings& bindings) {
    ShortcutFailures failures;
    for (const auto action : allShortcutActions) {
        const auto* const binding = find(bindings, action);
        if (!handlers.contains(action) || binding == nullptr || !binding->isValid())
            failures.emplace(action, ShortcutFailure{Kind::invalid});
    }
    return failures;
}

ShortcutFailures allActions(ShortcutFailure failure) {
    ShortcutFailures failures;
    for (const auto action : allShortcutActions)
        failures.emplace(action, failure);
    return failures;
}

} // namespace

GlobalShortcuts::GlobalShortcuts(std::unique_ptr<HotKeyRegistrar> registrar, SystemLog& log,
                                 std::string logSubsystem, std::uint32_t firstID)
    : m_registrar(std::move(registrar))
    , m_log(log)
    , m_logSubsystem(std::move(logSubsystem))
    , m_nextID(firstID) {}

bool GlobalShortcuts::install(const ShortcutHandlers& handlers, const ShortcutBindings& bindings) {
    if (auto duplicated = duplicates(bindings); !duplicated.empty())
        return refuse(std::move(duplicated), {});
    if (auto invalid = invalidActions(handlers, bindings); !invalid.empty())
        return refuse({}, std::move(invalid));
    if (const auto status = installEventHandler(); status != 0)
        return refuse({}, allActions({Kind::eventHandler, status}));

    const auto changed = changedActions(bindings);
    const auto previous = m_registrations;
    ShortcutFailures failures;
    auto unregistered = unregister(changed, failures);
    if (!failures.empty()) {
        restorePrevious(previous, unregistered, failures);
        publish(std::move(failures));
        return false;
    }
    auto fresh = registerFresh(changed, handlers, bindings, failures);
    if (failures.empty()) {
        adopt(std::move(fresh), handlers, bindings);
        publish({});
        return true;
    }
    removeFresh(fresh, failures);
    restorePrevious(previous, unregistered, failures);
    publish(std::move(failures));
    return false;
}

void GlobalShortcuts::deliver(std::uint32_t id) const {
    const auto found = std::ranges::find_if(
        m_registrations, [id](const auto& entry) { return entry.second.id == id; });
    if (found == m_registrations.end())
        return;
    // A copy: what it does may end in another `install`.
    const auto handler = found->second.handler;
    handler();
}

std::optional<ShortcutBinding> GlobalShortcuts::registeredBinding(ShortcutAction action) const {
    const auto found = m_registrations.find(action);
    return found == m_registrations.end() ? std::nullopt : std::optional(found->second.binding);
}

ShortcutActions GlobalShortcuts::duplicates(const ShortcutBindings& bindings) {
    std::map<ShortcutBinding::RegistrationKey, ShortcutActions> groups;
    for (const auto& [action, binding] : bindings)
        groups[binding.registrationKey()].insert(action);
    ShortcutActions duplicated;
    for (auto& [key, actions] : groups) {
        if (actions.size() > 1)
            duplicated.merge(actions);
    }
    return duplicated;
}

HotKeyStatus GlobalShortcuts::installEventHandler() {
    return m_registrar->installHandler([this, alive = std::weak_ptr(m_alive)](std::uint32_t id) {
        if (alive.lock())
            deliver(id);
    });
}

std::vector<ShortcutAction>
GlobalShortcuts::changedActions(const ShortcutBindings& bindings) const {
    std::vector<ShortcutAction> changed;
    for (const auto action : allShortcutActions) {
        using Key = std::optional<ShortcutBinding::RegistrationKey>;
        const auto* const registered = find(m_registrations, action);
        const auto* const wanted = find(bindings, action);
        const auto now = registered ? Key(registered->binding.registrationKey()) : Key();
        if (now != (wanted ? Key(wanted->registrationKey()) : Key()))
            changed.push_back(action);
    }
    return changed;
}

ShortcutActions GlobalShortcuts::unregister(const std::vector<ShortcutAction>& changed,
                                            ShortcutFailures& failures) {
    ShortcutActions unregistered;
    for (const auto action : changed) {
        const auto* const registration = find(m_registrations, action);
        if (registration == nullptr)
            continue;
        if (const auto status = m_registrar->unregisterHotKey(registration->id); status != 0) {
            failures[action] = {Kind::unregistration, status};
            continue;
        }
        m_registrations.erase(action);
        unregistered.insert(action);
    }
    return unregistered;
}

GlobalShortcuts::Registrations
GlobalShortcuts::registerFresh(const std::vector<ShortcutAction>& changed,
                               const ShortcutHandlers& handlers, const ShortcutBindings& bindings,
                               ShortcutFailures& failures) {
    Registrations fresh;
    for (const auto action : changed) {
        const auto* const handler = find(handlers, action);
        const auto* const binding = find(bindings, action);
        if (handler == nullptr || binding == nullptr)
            continue;
        const auto id = takeNextID();
        const auto status = m_registrar->registerHotKey(binding->keyCode, binding->modifiers, id);
        if (status != 0) {
            failures[action] = {Kind::registration, status};
            log(fmt::format("[kestrove] RegisterEventHotKey failed for {} ({}), status={}",
                            rawValue(action), binding->display(), status));
            continue;
        }
        fresh.emplace(action, Registration{id, *binding, *handler});
    }
    return fresh;
}

void GlobalShortcuts::adopt(Registrations fresh, const ShortcutHandlers& handlers,
                            const ShortcutBindings& bindings) {
    m_registrations.merge(fresh);
    // Those that kept their hot key may have got another handler, or show other characters.
    for (auto& [action, registration] : m_registrations) {
        const auto* const handler = find(handlers, action);
        const auto* const binding = find(bindings, action);
        if (handler != nullptr && binding != nullptr)
            registration = {registration.id, *binding, *handler};
    }
}

void GlobalShortcuts::removeFresh(const Registrations& fresh, ShortcutFailures& failures) {
    for (const auto& [action, registration] : fresh) {
        const auto status = m_registrar->unregisterHotKey(registration.id);
        if (status == 0)
            continue;
        // It is in force, whatever was wanted: a press must find its handler.
        failures[action] = {Kind::cleanup, status};
        m_registrations.insert_or_assign(action, registration);
    }
}

void GlobalShortcuts::restorePrevious(const Registrations& previous, const ShortcutActions& actions,
                                      ShortcutFailures& failures) {
    for (const auto action : actions) {
        if (m_registrations.contains(action))
            continue;
        const auto& registration = previous.at(action);
        const auto& binding = registration.binding;
        const auto status =
            m_registrar->registerHotKey(binding.keyCode, binding.modifiers, registration.id);
        if (status != 0) {
            failures[action] = {Kind::restoration, status};
            log(fmt::format("[kestrove] failed to restore previous shortcut for {}, status={}",
                            rawValue(action), status));
            continue;
        }
        m_registrations.emplace(action, registration);
    }
}

void GlobalShortcuts::publish(ShortcutFailures failures) {
    m_duplicateActions.set({});
    m_operationFailures.set(std::move(failures));
    m_registeredActions.set(keys(m_registrations));
}

bool GlobalShortcuts::refuse(ShortcutActions duplicateActions, ShortcutFailures failures) {
    m_duplicateActions.set(std::move(duplicateActions));
    m_operationFailures.set(std::move(failures));
    return false;
}

std::uint32_t GlobalShortcuts::takeNextID() {
    if (m_nextID == std::numeric_limits<std::uint32_t>::max()) {
        // An identifier that is used again could run another action's handler.
        log("[kestrove] no hot-key identifier is left");
        std::abort();
    }
    return m_nextID++;
}

void GlobalShortcuts::log(const std::string& line) const {
    m_log.write(m_logSubsystem, "", LogLevel::error, line);
}

} // namespace kestrove
