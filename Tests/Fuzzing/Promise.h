#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unicode/ustring.h>
#include <vector>

namespace kestrove::fuzzing {

/// What holds whatever the input is. The input that breaks it is kept by whoever runs the target.
inline void promise(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

/// Valid UTF-8, by a library's word and not by ours, without control characters.
inline bool isReadable(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t units = 0;
    u_strFromUTF8(nullptr, 0, &units, text.data(), static_cast<std::int32_t>(text.size()), &status);
    // That there is no room for the result is no failure: only the reading is asked for.
    if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR)
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        const bool isLateControl =
            byte == 0xC2 && static_cast<std::uint8_t>(text[i + 1]) < 0xA0; // U+0080 to U+009F
        if (byte < 0x20 || byte == 0x7F || isLateControl)
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
