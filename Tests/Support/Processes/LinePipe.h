#pragma once

#include <string>

namespace kestrove::test {

/// The pipe by which a program says one line once it is ready ("-displayfd", "--print-address").
class LinePipe {
public:
    LinePipe();
    ~LinePipe();
    LinePipe(const LinePipe&) = delete;
    LinePipe& operator=(const LinePipe&) = delete;

    /// For ChildProcess::Options::keptDescriptors and the program's command line.
    [[nodiscard]] int writeEnd() const { return m_writeEnd; }
    /// The line without its end; empty when the program died or took too long. After the start.
    [[nodiscard]] std::string readLine();

private:
    int m_readEnd = -1;
    int m_writeEnd = -1;
};

} // namespace kestrove::test
