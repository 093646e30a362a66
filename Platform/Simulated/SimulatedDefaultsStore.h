#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace kestrove {

class SimulatedDesktop;

/// What is stored of the user's values. It outlives the adapters over it, as a file outlives the
/// runs of a program. Thread: main.
class SimulatedDefaultsStore {
public:
    using Value = std::variant<std::string, std::int64_t, bool, std::vector<std::uint8_t>>;
    using Values = std::map<std::string, Value, std::less<>>;

    explicit SimulatedDefaultsStore(SimulatedDesktop& desktop)
        : m_desktop(desktop) {}

    [[nodiscard]] const Values& values() const { return m_values; }
    /// As an earlier run, or somebody's editor, left it.
    void setValue(std::string key, Value value);

    /// Whether a write succeeds (it does not on a full disk).
    void setWritable(bool isWritable);
    [[nodiscard]] bool isWritable() const { return m_isWritable; }

private:
    SimulatedDesktop& m_desktop;
    Values m_values;
    bool m_isWritable = true;
};

} // namespace kestrove
