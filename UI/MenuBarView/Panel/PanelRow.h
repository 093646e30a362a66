#pragma once

#include "UI/MenuBarView/MenuContent.h"

#include <QButtonGroup>
#include <QPushButton>

#include <cstdint>
#include <functional>
#include <string>

namespace kestrove {

/// What one line of the panel says.
struct PanelRowContent {
    enum class Kind : std::uint8_t {
        command,
        /// The one thing that most users open the panel for.
        prominentCommand,
        /// With an edge around it, among others beside it.
        borderedCommand,
        radioButton,
        checkBox,
    };

    Kind kind = Kind::command;
    std::string title = {};
    /// A second line, smaller; empty for most.
    std::string subtitle = {};
    /// Follows the title, two spaces after it; empty for most.
    std::string shortcut = {};
    std::string help = {};
    /// The name of a symbol; empty for most.
    std::string symbol = {};
    bool isEnabled = true;
    bool isChecked = false;
    /// Its frames are in the output now.
    bool isLive = false;

    bool operator==(const PanelRowContent&) const = default;
};

[[nodiscard]] PanelRowContent panelRow(const MenuButton& button,
                                       PanelRowContent::Kind kind = PanelRowContent::Kind::command);
[[nodiscard]] PanelRowContent panelRow(const MenuFollowModeRow& row);
[[nodiscard]] PanelRowContent panelRow(const MenuSourceRow& row);

/// A line of the panel that can be clicked. Its tick is what its content says, never what a click
/// has made of it.
///
/// Thread: main.
class PanelRow final : public QPushButton {
public:
    /// The kind stays; `run` is called for each click, also by key or by assistive technology.
    PanelRow(PanelRowContent content, std::function<void()> run, QWidget* parent = nullptr);

    void show(const PanelRowContent& content);
    using QPushButton::show;
    /// What a click does from now on.
    void setRun(std::function<void()> run) { m_run = std::move(run); }
    [[nodiscard]] const PanelRowContent& content() const { return m_content; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void nextCheckState() override {}
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void run();

    PanelRowContent m_content;
    std::function<void()> m_run;
    /// Radio buttons that may all be off are those of a group that is not exclusive.
    QButtonGroup m_group;
};

} // namespace kestrove
