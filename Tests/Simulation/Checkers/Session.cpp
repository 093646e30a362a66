// What the session does and says, and its refreshing.
#include "Tests/Simulation/Checkers/Checkers.h"
#include "Tests/Simulation/Checkers/Names.h"
#include "Tests/Simulation/Report.h"

#include <array>
#include <fmt/format.h>
#include <ranges>
#include <string_view>

namespace kestrove::simulation {

using Kind = CaptureSessionState::Kind;

namespace {

constexpr std::array<std::string_view, 11> statusTexts{"画面収録の許可が取り消されました",
                                                       "画面収録の許可が必要です",
                                                       "利用可能な共有ソースがありません",
                                                       "共有ソースの切替に失敗しました",
                                                       "画面共有が停止しました",
                                                       "停止中",
                                                       "開始中…",
                                                       "稼働中",
                                                       "切替中…",
                                                       "ソース待ち",
                                                       "停止処理中…"};
constexpr std::array<std::string_view, 5> guidanceTexts{
    "開始または再試行すると、macOS の画面収録許可を確認できます。",
    "システム設定で画面収録を許可してから再試行してください。",
    "出力を安全に停止しました。画面収録を再許可してから再試行してください。",
    "出力を安全に停止しました。ソースを確認して再試行してください。",
    "古い映像を消して安全に停止しました。再試行してください。"};

bool isAllowed(CaptureSessionState from, CaptureSessionState to) {
    if (from == to)
        return true;
    // What is shown is given up for another source before anything is found out about that.
    if (from.kind() == Kind::running && to.kind() == Kind::recoveryRequired)
        return to.recoveryReason() == CaptureRecoveryReason::streamStopped;
    if (from.isActive())
        return !isOneOf(to.kind(), {Kind::stopped, Kind::starting});
    if (from.kind() == Kind::stopping)
        return to.kind() == Kind::stopped;
    return isOneOf(to.kind(), {Kind::starting, Kind::permissionRequired});
}

} // namespace

void Checkers::stateChanges(CaptureSessionState to) {
    const auto from = m_program.controller().sessionState().get();
    m_mayHaveCaptured |= mayCapture(to);
    Report::ofThisProcess().count(fmt::format("state: {} to {}", nameOf(from), nameOf(to)));
    if (!isAllowed(from, to))
        noteMeanwhile("only transitions of the table",
                      fmt::format("{} to {}", nameOf(from), nameOf(to)));
    checkEndIsDue(to);
}

/// A session ends by itself for what has happened in it, not for what an earlier one met.
void Checkers::checkEndIsDue(CaptureSessionState to) {
    const bool isMissing = !m_desktop.isRecordingAllowed();
    const auto from = m_program.controller().sessionState().get();
    const bool wasMissing = from.isActive() && m_hasLackedPermission;
    if (to.kind() == Kind::starting)
        m_hasLackedPermission = isMissing;
    if (to.kind() == Kind::permissionRequired && !isMissing && !wasMissing)
        noteMeanwhile("a session ends for a permission only that it lacks", nameOf(from));
    if (to != from && to.recoveryReason() == CaptureRecoveryReason::streamStopped &&
        !hasOwnStreamEnded())
        noteMeanwhile("a session is interrupted only by the end of its own stream", nameOf(from));
}

/// A session's stream is the one that was made last.
bool Checkers::hasOwnStreamEnded() const {
    const auto& capture = m_desktop.capture();
    for (const auto& record : std::views::reverse(capture.records())) {
        if (record.call == CaptureCall::makeStream)
            return capture.hasEndedByItself(record.stream);
    }
    return false;
}

/// It runs, or it has ended and the program is about to hear of it.
bool Checkers::isOwnStreamThere() const {
    const auto stream = m_desktop.capture().latestStream();
    return hasOwnStreamEnded() || (stream && stream->phase() == SimulatedStream::Phase::running);
}

std::optional<Failure> Checkers::checkTexts() const {
    const auto& controller = m_program.controller();
    const auto state = controller.sessionState().get();
    if (!contains(statusTexts, state.statusMessage()))
        return Failure{"the status is one of the texts", std::string(state.statusMessage())};
    const auto guidance = controller.recoveryGuidance();
    if (guidance && !contains(guidanceTexts, *guidance))
        return Failure{"the guidance is one of the texts", std::string(*guidance)};
    const bool isStuck = isOneOf(state.kind(), {Kind::permissionRequired, Kind::recoveryRequired});
    if (guidance.has_value() != isStuck)
        return Failure{"guidance exactly where the user has to do something", nameOf(state)};
    return {};
}

std::optional<Failure> Checkers::checkSchedule() const {
    const auto state = m_program.controller().sessionState().get();
    const bool isScheduled = m_program.isRefreshScheduled();
    const bool mustBe = state.isActive();
    const bool mustNotBe =
        state.kind() == Kind::stopped ||
        (state.recoveryReason() && *state.recoveryReason() != CaptureRecoveryReason::streamStopped);
    if ((mustBe && !isScheduled) || (mustNotBe && isScheduled))
        return Failure{"the refresh runs exactly when it should",
                       fmt::format("{}, {}", nameOf(state), isScheduled ? "runs" : "does not")};
    return {};
}

} // namespace kestrove::simulation
