#pragma once

#include "Desktop/UserDefaults.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <variant>

namespace kestrove {

/// A store in memory that a test fills and reads. It logs the key of every write.
class MemoryUserDefaults final : public UserDefaults {
public:
    using Value = std::variant<std::string, std::int64_t, bool, Data>;

    std::optional<std::string> text(std::string_view key) const override {
        return value<std::string>(key);
    }
    std::optional<std::int64_t> integer(std::string_view key) const override {
        return value<std::int64_t>(key);
    }
    std::optional<bool> boolean(std::string_view key) const override { return value<bool>(key); }
    std::optional<Data> data(std::string_view key) const override { return value<Data>(key); }

    void setText(std::string_view key, std::string_view text) override {
        write(key, std::string(text));
    }
    void setInteger(std::string_view key, std::int64_t integer) override { write(key, integer); }
    void setBoolean(std::string_view key, bool boolean) override { write(key, boolean); }
    void setData(std::string_view key, const Data& data) override { write(key, data); }

    /// A data value as text, for comparisons; empty when there is none.
    [[nodiscard]] std::string dataText(std::string_view key) const {
        const auto stored = data(key).value_or(Data());
        return {stored.begin(), stored.end()};
    }
    void putData(const std::string& key, std::string_view bytes) {
        values[key] = Data(bytes.begin(), bytes.end());
    }

    std::map<std::string, Value, std::less<>> values;
    CallLog writes;

private:
    template <class Type>
    std::optional<Type> value(std::string_view key) const {
        const auto found = values.find(key);
        if (found == values.end() || !std::holds_alternative<Type>(found->second))
            return std::nullopt;
        return std::get<Type>(found->second);
    }
    void write(std::string_view key, Value value) {
        writes.add(std::string(key));
        values.insert_or_assign(std::string(key), std::move(value));
    }
};

} // namespace kestrove
