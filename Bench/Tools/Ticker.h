#pragma once

#include <chrono>
#include <thread>

namespace kestrove::bench {

/// A steady beat: late ticks are not made up for by hurrying.
class Ticker {
public:
    explicit Ticker(int perSecond)
        : m_interval(std::chrono::nanoseconds(std::chrono::seconds(1)) / perSecond) {}

    void wait() {
        const auto now = std::chrono::steady_clock::now();
        m_next = std::max(m_next + m_interval, now);
        std::this_thread::sleep_until(m_next);
    }

private:
    std::chrono::nanoseconds m_interval;
    std::chrono::steady_clock::time_point m_next = std::chrono::steady_clock::now();
};

} // namespace kestrove::bench
