#pragma once

#include "Async/Subscription.h"
#include "UI/MenuBarView/Panel/PanelView.h"

#include <QElapsedTimer>
#include <QRect>
#include <QWidget>

#include <optional>

class QScrollArea;

namespace kestrove {

class MenuBarView;

/// The window around the panel's content, one of the two kinds. It deletes itself when it is
/// closed.
///
/// Thread: main. `view` outlives it.
class PanelFrame final : public QWidget {
public:
    /// With an anchor it opens there and leaves as menus do; without, it is an ordinary window.
    PanelFrame(MenuBarView& view, std::optional<QRect> anchor);

    [[nodiscard]] bool isPopup() const { return m_anchor.has_value(); }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void follow(MenuBarView& view);
    /// To the content's present height, at the anchor.
    void place();
    /// A window of its own has room for what it shows, as far as the screen has: it is opened
    /// before the list of sources has been read. Once somebody else has given it a size, that one
    /// counts.
    void grow(QSize wanted);

    MenuBarView& m_menu;
    std::optional<QRect> m_anchor;
    PanelView* m_view;
    QScrollArea* m_scroll;
    int m_placedHeight = 0;
    /// That of a window of its own as long as nobody else has given it another one.
    QSize m_ownSize;
    QElapsedTimer m_sinceOpened;
    Subscription m_changed;
};

} // namespace kestrove
