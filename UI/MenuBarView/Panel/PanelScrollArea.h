#pragma once

#include <QScrollArea>

namespace kestrove {

/// The lists of sources, which scroll up and down where there is no room for all of them. Thread:
/// main.
class PanelScrollArea final : public QScrollArea {
public:
    /// It would like to be as high as the content of that size is wide, and needs no more than its
    /// height. Pixels.
    PanelScrollArea(QWidget* content, QSize least);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// A line where the lists are cut, so that they are not taken to go on in what lies beside
    /// them.
    void drawEnds();

    QSize m_least;
};

} // namespace kestrove
