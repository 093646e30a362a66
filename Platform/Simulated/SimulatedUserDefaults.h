#pragma once

#include "Desktop/UserDefaults.h"
#include "Platform/Simulated/SimulatedDefaultsStore.h"

namespace kestrove {

class SimulatedDesktop;

/// The user's values, kept in the desktop's store. A new one over the same desktop is a new run.
class SimulatedUserDefaults final : public UserDefaults {
public:
    explicit SimulatedUserDefaults(SimulatedDesktop& desktop);

    std::optional<std::string> text(std::string_view key) const override;
    std::optional<std::int64_t> integer(std::string_view key) const override;
    std::optional<bool> boolean(std::string_view key) const override;
    std::optional<Data> data(std::string_view key) const override;
    void setText(std::string_view key, std::string_view value) override;
    void setInteger(std::string_view key, std::int64_t value) override;
    void setBoolean(std::string_view key, bool value) override;
    void setData(std::string_view key, const Data& value) override;

    /// How often a value was set, equal or not.
    [[nodiscard]] int writeCount() const { return m_writeCount; }

private:
    template <class Value>
    std::optional<Value> find(std::string_view key) const;
    void set(std::string_view key, SimulatedDefaultsStore::Value value);

    SimulatedDesktop& m_desktop;
    /// What this run sees: also what could not be stored.
    SimulatedDefaultsStore::Values m_values;
    int m_writeCount = 0;
};

} // namespace kestrove
