#pragma once

#include <string_view>

namespace kestrove {

/// Where lines go that a developer watches in a terminal. Main thread.
class DiagnosticOutput {
public:
    DiagnosticOutput() = default;
    DiagnosticOutput(const DiagnosticOutput&) = delete;
    DiagnosticOutput& operator=(const DiagnosticOutput&) = delete;
    virtual ~DiagnosticOutput() = default;

    /// `line` has no line break.
    virtual void writeLine(std::string_view line) = 0;
};

/// Writes to the process's standard output, each line at once.
class StandardOutput final : public DiagnosticOutput {
public:
    void writeLine(std::string_view line) override;
};

} // namespace kestrove
