#include "UI/Alerts/RunModalAlert.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

#include <functional>

namespace kestrove {
namespace {

/// Runs the alert and does `action` to its box once it is open.
std::size_t answer(const WarningAlert& alert, const std::function<void(QMessageBox&)>& action) {
    QMetaObject::invokeMethod(
        qApp, [&] { action(*qobject_cast<QMessageBox*>(QApplication::activeModalWidget())); },
        Qt::QueuedConnection);
    return runModalAlert(alert);
}

TEST(RunModalAlert, ShowsTheTextsAndButtonsOfThePermissionAlert) {
    const auto alert = permissionAlert(ScreenRecordingPermission::denied);
    const auto index = answer(alert, [&](QMessageBox& box) {
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        EXPECT_EQ(box.windowTitle().toStdString(), "Kestrove");
        EXPECT_EQ(box.text().toStdString(), "画面収録の許可が必要です");
        EXPECT_EQ(box.informativeText().toStdString(),
                  "kestrove は画面を取り込んで共有ウィンドウとして表示します。\n"
                  "「システム設定 > プライバシーとセキュリティ > "
                  "画面収録」で kestrove を有効にしてください。");
        EXPECT_EQ(box.defaultButton()->text().toStdString(), "設定を開く");
        EXPECT_EQ(box.escapeButton()->text().toStdString(), "後で");
        EXPECT_EQ(box.buttons().size(), 2);
        box.defaultButton()->click();
    });
    EXPECT_EQ(index, 0U);
}

TEST(RunModalAlert, CountsClosingAsTheLastButton) {
    const auto alert = permissionAlert(ScreenRecordingPermission::revoked);
    EXPECT_EQ(answer(alert, [](QMessageBox& box) { box.escapeButton()->click(); }), 1U);
    EXPECT_EQ(answer(alert, [](QMessageBox& box) { box.close(); }), 1U);
}

} // namespace
} // namespace kestrove
