#pragma once

#include "UI/SettingsView/ShortcutStatus.h"

#include <QLabel>
#include <QWidget>

#include <optional>

namespace kestrove {

/// A symbol and a text after it, in a colour that can be read in light and dark themes. Thread:
/// main.
class StatusLabel final : public QWidget {
public:
    explicit StatusLabel(QWidget* parent = nullptr);

    void show(const StatusLine& line);
    using QWidget::show;

protected:
    void changeEvent(QEvent* event) override;

private:
    void render();

    std::optional<StatusLine> m_line;
    QLabel m_symbol;
    QLabel m_text;
};

/// Secondary texts, in the colours of `palette`.
[[nodiscard]] QColor secondaryColor(const QPalette& palette);

} // namespace kestrove
