#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unicode/utf8.h>
#include <vector>

namespace kestrove::fuzzing {

/// What holds whatever the input is. The input that breaks it is kept by whoever runs the target.
inline void promise(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

/// By a library's word, not by ours: valid UTF-8 without control characters.
inline bool isReadable(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t at = 0; at < length;) {
        UChar32 character = 0;
        U8_NEXT(bytes, at, length, character);
        if (character < 0x20 || (character >= 0x7F && character < 0xA0))
            return false;
    }
    return true;
}

/// Numbers from the front of an input, zeros after its end.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : m_data(data)
        , m_size(size) {}

    [[nodiscard]] bool isEmpty() const { return m_size == 0; }
    std::uint8_t byte() {
        if (m_size == 0)
            return 0;
        --m_size;
        return *m_data++;
    }
    std::uint16_t half() {
        const unsigned low = byte();
        return static_cast<std::uint16_t>(low | (byte() * 256U));
    }
    std::uint32_t word() {
        const std::uint32_t low = half();
        return low | (static_cast<std::uint32_t>(half()) << 16U);
    }
    /// What is left.
    [[nodiscard]] std::string_view text() const {
        return {reinterpret_cast<const char*>(m_data), m_size};
    }
    [[nodiscard]] std::vector<std::uint8_t> bytes() const { return {m_data, m_data + m_size}; }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

/// Implemented by each target: one input, whatever it holds.
void examine(Input input);

} // namespace kestrove::fuzzing
