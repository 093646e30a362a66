#include "Core/CaptureSource/CaptureSource.h"

namespace {

/// Feeds values in order into one hash.
class Hasher {
public:
    template <class Value>
    Hasher& feed(const Value& value) {
        // Knuth's multiplicative constant for 64 bits, and a rotation so that order matters.
        constexpr std::uint64_t constant = 0x9E3779B97F4A7C15U;
        m_state = (((m_state << 5U) | (m_state >> 59U)) ^ std::hash<Value>{}(value)) * constant;
        return *this;
    }
    template <class Value>
    Hasher& feed(const std::optional<Value>& value) {
        feed(value.has_value());
        return value ? feed(*value) : *this;
    }
    [[nodiscard]] std::size_t result() const { return m_state; }

private:
    std::uint64_t m_state = 0;
};

} // namespace

using namespace kestrove;

std::size_t std::hash<CaptureSource>::operator()(const CaptureSource& source) const noexcept {
    return Hasher().feed(source.isWindow()).feed(source.identifier()).result();
}

std::size_t
std::hash<WindowOwnerIdentity>::operator()(const WindowOwnerIdentity& owner) const noexcept {
    return Hasher().feed(owner.processID).feed(owner.bundleIdentifier).result();
}

std::size_t std::hash<ManualWindowSelection>::operator()(
    const ManualWindowSelection& selection) const noexcept {
    return Hasher().feed(selection.windowID).feed(selection.owner).result();
}

std::size_t std::hash<CaptureSourceInfo>::operator()(const CaptureSourceInfo& info) const noexcept {
    return Hasher()
        .feed(info.source)
        .feed(info.title)
        .feed(info.subtitle)
        .feed(info.windowOwner)
        .result();
}
