#pragma once

#include "UI/MenuBarView/Panel/PanelRow.h"

#include <QLabel>
#include <QWidget>

#include <functional>
#include <vector>

namespace kestrove {

/// What went wrong, and two buttons to go on. One element to those who cannot see it: it has the
/// guidance for a name and the two buttons for actions.
///
/// Thread: main.
class PanelRecovery final : public QWidget {
public:
    explicit PanelRecovery(std::function<void(MenuCommand)> run);

    void show(const MenuRecoverySection& section);
    using QWidget::show;
    [[nodiscard]] std::vector<PanelRow*> rows() { return {&m_retry, &m_openPreferences}; }

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void renderSymbol();

    std::function<void(MenuCommand)> m_run;
    std::string m_symbolName;
    QLabel m_symbol;
    QLabel m_guidance;
    PanelRow m_retry;
    PanelRow m_openPreferences;
};

} // namespace kestrove
