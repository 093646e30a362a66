#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QString>
#include <QVBoxLayout>

#include <string_view>

namespace kestrove {

[[nodiscard]] QString qtText(std::string_view utf8);

/// A section of the form with its title, and the layout for its content.
struct FormSection {
    explicit FormSection(std::string_view title);

    /// Owned by whoever puts it into a layout.
    QGroupBox* box;
    QVBoxLayout* layout;
};

/// An explanation: smaller and fainter than the rest, also after the theme has changed.
class CaptionLabel final : public QLabel {
public:
    explicit CaptionLabel(std::string_view text, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void fade();

    bool m_isFading = false;
};

} // namespace kestrove
