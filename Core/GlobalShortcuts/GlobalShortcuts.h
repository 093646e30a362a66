#pragma once

#include "Async/Published.h"
#include "Core/GlobalShortcuts/HotKeyRegistrar.h"
#include "Core/GlobalShortcuts/ShortcutAction.h"
#include "Desktop/SystemLog.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrove {

/// What each action does when its hot key is pressed. Run on the main thread.
using ShortcutHandlers = std::map<ShortcutAction, std::function<void()>>;

/// Why an action's hot key is not the one that was wanted.
struct ShortcutFailure {
    enum class Kind : std::uint8_t {
        /// The registrar could not install its event handler.
        eventHandler,
        /// The new hot key could not be registered.
        registration,
        /// The old hot key could not be removed.
        unregistration,
        /// Rolling back, the new hot key could not be removed: it is in force.
        cleanup,
        /// Rolling back, the old hot key could not be registered again: there is none now.
        restoration,
        /// No handler, no binding, or a binding that is not valid.
        invalid,
    };

    Kind kind;
    /// The registrar's; 0 for `invalid`.
    HotKeyStatus status = 0;

    bool operator==(const ShortcutFailure&) const = default;
};

using ShortcutFailures = std::map<ShortcutAction, ShortcutFailure>;

/// What became of the saved bindings at the start of the application.
enum class StartupRecoveryState : std::uint8_t {
    ready,
    /// The defaults are in force instead, and saved.
    recoveredToDefaults,
    /// Neither the saved bindings nor the defaults could be installed.
    failed,
};

/// Owns the system-wide hot keys of the application, one an action, and runs an action's handler
/// when its hot key is pressed. Bindings are installed as a set: either all of them come into
/// force, or what was in force before is put back as far as the system allows, and each deviation
/// is published. What is published as registered is always what the registrar holds.
///
/// Thread: main. Hot keys are not given back at its end: the registrar's platform does that.
class GlobalShortcuts {
public:
    using Action = ShortcutAction;
    using OperationFailure = ShortcutFailure;

    /// `firstID` is the first hot key's identifier; each registration gets the next one.
    GlobalShortcuts(std::unique_ptr<HotKeyRegistrar> registrar, SystemLog& log,
                    std::string logSubsystem, std::uint32_t firstID = 1);
    GlobalShortcuts(const GlobalShortcuts&) = delete;
    GlobalShortcuts& operator=(const GlobalShortcuts&) = delete;
    ~GlobalShortcuts() = default;

    /// Whether the bindings are in force now for all actions. If not, `operationFailures` or
    /// `duplicateActions` say why. Actions whose key does not change are left alone, so installing
    /// the same bindings again asks nothing of the system.
    bool install(const ShortcutHandlers& handlers, const ShortcutBindings& bindings);

    /// Runs the handler of the registration with this identifier, if there is one.
    void deliver(std::uint32_t id) const;

    /// Every action that shares its key and modifiers with another one.
    [[nodiscard]] static ShortcutActions duplicates(const ShortcutBindings& bindings);

    [[nodiscard]] static const ShortcutBindings& defaultBindings() {
        return defaultShortcutBindings();
    }

    // What views show.

    [[nodiscard]] const Published<ShortcutActions>& registeredActions() const {
        return m_registeredActions;
    }
    /// The binding in force; absent while the action has none.
    [[nodiscard]] std::optional<ShortcutBinding> registeredBinding(ShortcutAction action) const;
    /// Of the last `install`; empty after a successful one.
    [[nodiscard]] const Published<ShortcutFailures>& operationFailures() const {
        return m_operationFailures;
    }
    /// Of the last `install`; not empty only if it failed for that.
    [[nodiscard]] const Published<ShortcutActions>& duplicateActions() const {
        return m_duplicateActions;
    }
    /// Set by the settings coordinator alone.
    Published<StartupRecoveryState> startupRecoveryState{StartupRecoveryState::ready};

private:
    /// One live hot key.
    struct Registration {
        std::uint32_t id = 0;
        ShortcutBinding binding;
        std::function<void()> handler;
    };
    using Registrations = std::map<ShortcutAction, Registration>;

    [[nodiscard]] HotKeyStatus installEventHandler();
    [[nodiscard]] std::vector<ShortcutAction>
    changedActions(const ShortcutBindings& bindings) const;
    /// Removes the hot keys of `changed`; the actions that have none any more.
    [[nodiscard]] ShortcutActions unregister(const std::vector<ShortcutAction>& changed,
                                             ShortcutFailures& failures);
    [[nodiscard]] Registrations registerFresh(const std::vector<ShortcutAction>& changed,
                                              const ShortcutHandlers& handlers,
                                              const ShortcutBindings& bindings,
                                              ShortcutFailures& failures);
    void adopt(Registrations fresh, const ShortcutHandlers& handlers,
               const ShortcutBindings& bindings);
    void removeFresh(const Registrations& fresh, ShortcutFailures& failures);
    void restorePrevious(const Registrations& previous, const ShortcutActions& actions,
                         ShortcutFailures& failures);
    void publish(ShortcutFailures failures);
    [[nodiscard]] bool refuse(ShortcutActions duplicateActions, ShortcutFailures failures);
    [[nodiscard]] std::uint32_t takeNextID();
    void log(const std::string& line) const;

    std::unique_ptr<HotKeyRegistrar> m_registrar;
    SystemLog& m_log;
    std::string m_logSubsystem;
    Registrations m_registrations;
    std::uint32_t m_nextID;
    Published<ShortcutActions> m_registeredActions{{}};
    Published<ShortcutFailures> m_operationFailures{{}};
    Published<ShortcutActions> m_duplicateActions{{}};
    /// The delivery holds it weakly: a press that comes late finds nobody.
    std::shared_ptr<char> m_alive = std::make_shared<char>();
};

} // namespace kestrove
