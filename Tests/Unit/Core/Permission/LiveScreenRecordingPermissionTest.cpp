#include "Core/LiveScreenRecordingPermission.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreenRecordingAccess.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

using enum ScreenRecordingPermission;
using Calls = std::vector<std::string>;

class LivePermissionTest : public testing::Test {
protected:
    ScriptedScreenRecordingAccess desktop;
    std::vector<WarningAlert> alerts;
    std::size_t chosenButton = 1;
    PermissionGuard guard{desktop, [this](const WarningAlert& alert) {
                              alerts.push_back(alert);
                              return chosenButton;
                          }};
    LiveScreenRecordingPermission live{desktop, guard};
    ScreenRecordingPermissionAccess access = live.operations();
};

TEST_F(LivePermissionTest, LaunchedWithoutItIsNotDeterminedUntilRefused) {
    EXPECT_EQ(access.current(), notDetermined);
    EXPECT_EQ(access.current(), notDetermined);
    EXPECT_EQ(access.ensure(), denied);
    EXPECT_EQ(access.current(), denied);
}

TEST_F(LivePermissionTest, CheckingNeverAsks) {
    EXPECT_EQ(access.current(), notDetermined);
    EXPECT_EQ(desktop.calls.take(), Calls{"preflight"});
}

TEST_F(LivePermissionTest, EnsuringAsksOnlyWithoutIt) {
    EXPECT_EQ(access.ensure(), denied);
    EXPECT_EQ(desktop.calls.take(), (Calls{"preflight", "request"}));
    desktop.isAllowed = true;
    EXPECT_EQ(access.ensure(), granted);
    EXPECT_EQ(desktop.calls.take(), Calls{"preflight"});
}

TEST_F(LivePermissionTest, WithdrawnAfterACheckIsRevoked) {
    desktop.isAllowed = true;
    EXPECT_EQ(access.current(), granted);
    desktop.isAllowed = false;
    EXPECT_EQ(access.current(), revoked);
    EXPECT_EQ(access.ensure(), revoked);
    EXPECT_EQ(access.current(), revoked);
}

TEST_F(LivePermissionTest, WithdrawnAfterAGrantedRequestIsRevoked) {
    desktop.allowsOnRequest = true;
    EXPECT_EQ(access.ensure(), granted);
    desktop.isAllowed = false;
    EXPECT_EQ(access.current(), revoked);
}

TEST_F(LivePermissionTest, GrantedAfterARefusalAndWithdrawnIsRevoked) {
    EXPECT_EQ(access.ensure(), denied);
    desktop.isAllowed = true;
    EXPECT_EQ(access.current(), granted);
    desktop.isAllowed = false;
    EXPECT_EQ(access.current(), revoked);
}

TEST_F(LivePermissionTest, TheAlertSaysWhatToDo) {
    access.presentAlert(denied);
    access.presentAlert(notDetermined);
    access.presentAlert(revoked);
    ASSERT_EQ(alerts.size(), 3U);
    EXPECT_EQ(alerts[0].messageText, "画面収録の許可が必要です");
    EXPECT_EQ(alerts[1].messageText, "画面収録の許可が必要です");
    EXPECT_EQ(alerts[2].messageText, "画面収録の許可が取り消されました");
    for (const auto& alert : alerts) {
        EXPECT_EQ(alert.informativeText,
                  "kestrove は画面を取り込んで共有ウィンドウとして表示します。\n"
                  "「システム設定 > プライバシーとセキュリティ > 画面収録」で kestrove "
                  "を有効にしてください。");
        EXPECT_EQ(alert.buttons, (std::vector<std::string>{"設定を開く", "後で"}));
    }
}

TEST_F(LivePermissionTest, OnlyTheFirstButtonOpensTheSettings) {
    access.presentAlert(denied);
    EXPECT_TRUE(desktop.calls.take().empty());
    chosenButton = 0;
    access.presentAlert(denied);
    EXPECT_EQ(desktop.calls.take(), Calls{"openPreferences"});
    access.openPreferences();
    EXPECT_EQ(desktop.calls.take(), Calls{"openPreferences"});
    EXPECT_EQ(alerts.size(), 2U);
}

} // namespace
} // namespace kestrove
