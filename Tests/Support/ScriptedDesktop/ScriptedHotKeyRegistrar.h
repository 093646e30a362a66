#pragma once

#include "Core/GlobalShortcuts/HotKeyRegistrar.h"
#include "Core/GlobalShortcuts/ShortcutBinding.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace kestrove {

/// A keyboard in memory that outlives its registrar, so that a test sees what is left registered.
/// It logs every call and fails those that `statusOf` says.
struct ScriptedKeyboard {
    enum class Operation : std::uint8_t { install, registering, unregistering };

    /// What registering a combination that is registered already answers.
    static constexpr HotKeyStatus taken = -9878;

    /// The status of the call of this number, counted from 0 over all of them; 0 to do what was
    /// asked.
    std::function<HotKeyStatus(int number, Operation operation)> statusOf;
    CallLog calls;
    std::map<std::uint32_t, ShortcutBinding::RegistrationKey> live;
    HotKeyRegistrar::Delivery delivery;
    int callCount = 0;

    [[nodiscard]] HotKeyStatus next(Operation operation) {
        const auto number = callCount++;
        return statusOf ? statusOf(number, operation) : 0;
    }
    /// Presses what is registered on this key; whether anything is.
    bool press(ShortcutBinding::RegistrationKey key) const {
        for (const auto& [id, registered] : live) {
            if (registered == key) {
                delivery(id);
                return true;
            }
        }
        return false;
    }
};

/// Fails the test when an identifier is used for two hot keys at a time.
class ScriptedHotKeyRegistrar final : public HotKeyRegistrar {
public:
    explicit ScriptedHotKeyRegistrar(ScriptedKeyboard& keyboard)
        : m_keyboard(keyboard) {}

    HotKeyStatus installHandler(Delivery delivery) override {
        m_keyboard.calls.add("install handler");
        m_keyboard.delivery = std::move(delivery);
        return m_keyboard.next(ScriptedKeyboard::Operation::install);
    }
    HotKeyStatus registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                std::uint32_t id) override {
        m_keyboard.calls.add(fmt::format("register {}: {}+{:#x}", id, keyCode, modifiers));
        const auto status = m_keyboard.next(ScriptedKeyboard::Operation::registering);
        if (status != 0)
            return status;
        const ShortcutBinding::RegistrationKey wanted{keyCode, modifiers};
        for (const auto& [other, key] : m_keyboard.live) {
            if (key == wanted)
                return ScriptedKeyboard::taken;
        }
        EXPECT_TRUE(m_keyboard.live.try_emplace(id, keyCode, modifiers).second) << id;
        return 0;
    }
    HotKeyStatus unregisterHotKey(std::uint32_t id) override {
        m_keyboard.calls.add(fmt::format("unregister {}", id));
        const auto status = m_keyboard.next(ScriptedKeyboard::Operation::unregistering);
        if (status != 0)
            return status;
        return m_keyboard.live.erase(id) == 1 ? 0 : missingReference;
    }

private:
    ScriptedKeyboard& m_keyboard;
};

} // namespace kestrove
