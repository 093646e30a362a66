#pragma once

#include <memory>
#include <string>
#include <vector>

namespace kestrove::test {

/// The manager of a desktop's session, as programs meet one (XSMP): a program that is started with
/// its address registers, says by which command it is started again, saves when the session is
/// about to end, and ends when it is told to. For one program at a time. It takes part while it is
/// served.
class SessionManager {
public:
    /// Who listens on an address of this machine only.
    SessionManager();
    ~SessionManager();
    SessionManager(const SessionManager&) = delete;
    SessionManager& operator=(const SessionManager&) = delete;

    /// KEY=VALUE for a program's environment.
    [[nodiscard]] std::string environment() const;

    /// Takes in what has arrived. Call it while something is waited for.
    void serve();

    /// A program has registered and has not left.
    [[nodiscard]] bool hasProgram() const;
    /// How often it has said that it has saved.
    [[nodiscard]] int savedCount() const;
    /// A property of the program, such as RestartCommand: its words; empty when there is none.
    [[nodiscard]] std::vector<std::string> property(const std::string& name) const;

    /// The user is about to leave: save, and speak up if need be.
    void endSession();
    /// Somebody has spoken up: the session goes on.
    void cancelEnd();
    /// All have saved.
    void die();

private:
    /// Of the library, whose header makes macros of ordinary words.
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace kestrove::test
