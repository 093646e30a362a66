#include "UI/Alerts/RunModalAlert.h"

#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <vector>

namespace kestrove {

std::size_t runModalAlert(const WarningAlert& alert) {
    QMessageBox box;
    box.setIcon(QMessageBox::Warning);
    // Else it were the program's identifier. The output window alone is called "kestrove".
    box.setWindowTitle(QStringLiteral("Kestrove"));
    box.setText(QString::fromStdString(alert.messageText));
    box.setInformativeText(QString::fromStdString(alert.informativeText));
    // The output window may be above all others itself.
    box.setWindowFlag(Qt::WindowStaysOnTopHint);
    std::vector<QAbstractButton*> buttons;
    for (const auto& title : alert.buttons) {
        const auto role = buttons.empty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
        buttons.push_back(box.addButton(QString::fromStdString(title), role));
    }
    if (!buttons.empty()) {
        box.setDefaultButton(static_cast<QPushButton*>(buttons.front()));
        box.setEscapeButton(buttons.back());
    }
    box.exec();
    const auto clicked = std::ranges::find(buttons, box.clickedButton());
    const auto index = static_cast<std::size_t>(clicked - buttons.begin());
    return std::min(index, buttons.empty() ? 0 : buttons.size() - 1);
}

} // namespace kestrove
