#include "Platform/Simulated/SimulatedUserDefaults.h"

#include "Platform/Simulated/SimulatedDesktop.h"

#include <utility>

namespace kestrove {

SimulatedUserDefaults::SimulatedUserDefaults(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_values(desktop.defaults().values()) {}

template <class Value>
std::optional<Value> SimulatedUserDefaults::find(std::string_view key) const {
    m_desktop.requireMainThread("reading a stored value");
    const auto found = m_values.find(key);
    if (found == m_values.end() || !std::holds_alternative<Value>(found->second))
        return std::nullopt;
    return std::get<Value>(found->second);
}

void SimulatedUserDefaults::set(std::string_view key, SimulatedDefaultsStore::Value value) {
    m_desktop.requireMainThread("writing a stored value");
    ++m_writeCount;
    if (m_desktop.defaults().isWritable())
        m_desktop.defaults().setValue(std::string(key), value);
    m_values.insert_or_assign(std::string(key), std::move(value));
}

std::optional<std::string> SimulatedUserDefaults::text(std::string_view key) const {
    return find<std::string>(key);
}

std::optional<std::int64_t> SimulatedUserDefaults::integer(std::string_view key) const {
    return find<std::int64_t>(key);
}

std::optional<bool> SimulatedUserDefaults::boolean(std::string_view key) const {
    return find<bool>(key);
}

std::optional<UserDefaults::Data> SimulatedUserDefaults::data(std::string_view key) const {
    return find<Data>(key);
}

void SimulatedUserDefaults::setText(std::string_view key, std::string_view value) {
    set(key, std::string(value));
}

void SimulatedUserDefaults::setInteger(std::string_view key, std::int64_t value) {
    set(key, value);
}

void SimulatedUserDefaults::setBoolean(std::string_view key, bool value) {
    set(key, value);
}

void SimulatedUserDefaults::setData(std::string_view key, const Data& value) {
    set(key, value);
}

} // namespace kestrove
