#include "Core/AppController/CaptureSessionState.h"

#include "Core/AppController/RecoveryGuidance.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Permission = ScreenRecordingPermission;
using Reason = CaptureRecoveryReason;

struct Row {
    State state;
    std::string status;
    std::optional<std::string> guidance;
};

std::vector<Row> allStates() {
    return {
        {State::permissionRequired(Permission::notDetermined), "画面収録の許可が必要です",
         "開始または再試行すると、macOS の画面収録許可を確認できます。"},
        {State::permissionRequired(Permission::granted), "画面収録の許可が必要です", std::nullopt},
        {State::permissionRequired(Permission::denied), "画面収録の許可が必要です",
         "システム設定で画面収録を許可してから再試行してください。"},
        {State::permissionRequired(Permission::revoked), "画面収録の許可が取り消されました",
         "出力を安全に停止しました。画面収録を再許可してから再試行してください。"},
        {State::recoveryRequired(Reason::sourceUnavailable), "利用可能な共有ソースがありません",
         "出力を安全に停止しました。ソースを確認して再試行してください。"},
        {State::recoveryRequired(Reason::switchFailed), "共有ソースの切替に失敗しました",
         "古い映像を消して安全に停止しました。再試行してください。"},
        {State::recoveryRequired(Reason::streamStopped), "画面共有が停止しました",
         "古い映像を消して安全に停止しました。再試行してください。"},
        {State::stopped(), "停止中", std::nullopt},
        {State::starting(), "開始中\u2026", std::nullopt},
        {State::running(), "稼働中", std::nullopt},
        {State::switching(), "切替中\u2026", std::nullopt},
        {State::waitingForSource(), "ソース待ち", std::nullopt},
        {State::stopping(), "停止処理中\u2026", std::nullopt},
    };
}

TEST(CaptureSessionState, HasItsStatusAndItsGuidance) {
    for (const auto& row : allStates()) {
        EXPECT_EQ(row.state.statusMessage(), row.status);
        EXPECT_EQ(recoveryGuidance(row.state), row.guidance) << row.status;
    }
}

TEST(CaptureSessionState, GuidanceEndsWithAnIdeographicFullStop) {
    for (const auto& row : allStates()) {
        if (const auto guidance = recoveryGuidance(row.state)) {
            EXPECT_TRUE(guidance->ends_with("\u3002")) << *guidance;
        }
    }
}

TEST(CaptureSessionState, EqualsOnlyItself) {
    const auto rows = allStates();
    for (std::size_t left = 0; left < rows.size(); ++left) {
        for (std::size_t right = 0; right < rows.size(); ++right)
            EXPECT_EQ(rows[left].state == rows[right].state, left == right) << left << right;
    }
}

TEST(CaptureSessionState, KeepsItsPayload) {
    EXPECT_EQ(State::permissionRequired(Permission::revoked).permission(), Permission::revoked);
    EXPECT_EQ(State::permissionRequired(Permission::revoked).recoveryReason(), std::nullopt);
    EXPECT_EQ(State::recoveryRequired(Reason::streamStopped).recoveryReason(),
              Reason::streamStopped);
    EXPECT_EQ(State::recoveryRequired(Reason::streamStopped).permission(), std::nullopt);
    EXPECT_EQ(State::running().permission(), std::nullopt);
    EXPECT_EQ(State::running().recoveryReason(), std::nullopt);
}

TEST(CaptureSessionState, FourKindsAreActive) {
    std::vector<State> active;
    for (const auto& row : allStates()) {
        if (row.state.isActive())
            active.push_back(row.state);
    }
    EXPECT_EQ(active, (std::vector{State::starting(), State::running(), State::switching(),
                                   State::waitingForSource()}));
}

TEST(CaptureSessionState, FitsInOneByte) {
    EXPECT_EQ(sizeof(State), 1U);
}

} // namespace
} // namespace kestrove
