#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrove {

/// The user's stored values by key. A value of another type than the one asked for counts as
/// absent. Writes are synchronous: what returned is stored. A write that cannot be stored leaves
/// the earlier value in the store and is not reported; the new value is still read back during this
/// run.
///
/// Thread: main.
class UserDefaults {
public:
    using Data = std::vector<std::uint8_t>;

    UserDefaults() = default;
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;
    virtual ~UserDefaults() = default;

    [[nodiscard]] virtual std::optional<std::string> text(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<std::int64_t> integer(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<bool> boolean(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<Data> data(std::string_view key) const = 0;

    virtual void setText(std::string_view key, std::string_view value) = 0;
    virtual void setInteger(std::string_view key, std::int64_t value) = 0;
    virtual void setBoolean(std::string_view key, bool value) = 0;
    virtual void setData(std::string_view key, const Data& value) = 0;
};

} // namespace kestrove
