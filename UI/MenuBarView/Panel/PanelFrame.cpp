#include "UI/MenuBarView/Panel/PanelFrame.h"

#include "UI/MenuBarView/MenuBarView.h"
#include "UI/MenuBarView/Panel/PanelPlace.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStyleHints>
#include <QVBoxLayout>

#include <algorithm>

namespace kestrove {

namespace {

/// Of the screen: so much is left for the window's frame and for panels.
constexpr double mostOfTheScreen = 0.9;
constexpr int edge = 1; // pixels of the line around a panel that has no frame

/// Scrolls all of the content where even the least of it has no room.
class Sheet final : public QScrollArea {
public:
    explicit Sheet(PanelView* view)
        : m_view(view) {
        setWidget(view);
        setFrameShape(QFrame::NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QScrollArea::resizeEvent(event);
        fit();
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_view && event->type() == QEvent::LayoutRequest) {
            fit();
            updateGeometry();
        }
        return QScrollArea::eventFilter(watched, event);
    }

private:
    void fit() {
        const auto room = viewport()->size();
        m_view->resize(room.width(), std::max(room.height(), m_view->leastHeight(room.width())));
    }

    PanelView* m_view;
};

} // namespace

PanelFrame::PanelFrame(MenuBarView& view, std::optional<QRect> anchor)
    : QWidget(nullptr, anchor ? Qt::Popup | Qt::FramelessWindowHint : Qt::Window)
    , m_menu(view)
    , m_anchor(anchor)
    , m_view(new PanelView(view,
                           [this] {
                               if (isPopup())
                                   close();
                           }))
    , m_scroll(new Sheet(m_view)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Kestrove"));
    if (isPopup()) {
        setAttribute(Qt::WA_X11NetWmWindowTypePopupMenu);
        // The click that closes it, perhaps on the icon, is not to open it again.
        setAttribute(Qt::WA_NoMouseReplay);
    }
    auto* const layout = new QVBoxLayout(this);
    const int room = isPopup() ? edge : 0;
    layout->setContentsMargins(room, room, room, room);
    layout->addWidget(m_scroll);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    m_changed = view.onChanged([this, &view] { follow(view); });
    follow(view);
    place();
    m_sinceOpened.start();
    setFocusProxy(m_view);
    m_view->setFocus();
}

void PanelFrame::follow(MenuBarView& view) {
    m_view->show(view.content());
}

bool PanelFrame::event(QEvent* event) {
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest)
        place();
    return isHandled;
}

void PanelFrame::place() {
    const int scrollBar = 2 * edge;
    const QSize wanted(m_view->preferredWidth() + scrollBar, m_view->preferredHeight() + scrollBar);
    if (wanted.height() == m_placedHeight)
        return;
    m_placedHeight = wanted.height();
    if (m_anchor) {
        const auto* screen = QGuiApplication::screenAt(m_anchor->center());
        if (screen == nullptr)
            screen = QGuiApplication::primaryScreen();
        setGeometry(panelPlace(wanted, *m_anchor, screen->availableGeometry()));
    } else {
        grow(wanted);
    }
}

void PanelFrame::grow(QSize wanted) {
    const bool isFirstTime = m_ownSize.isEmpty();
    if (!isFirstTime && size() != m_ownSize)
        return;
    const auto available = screen()->availableGeometry();
    m_ownSize = wanted.boundedTo(available.size() * mostOfTheScreen).expandedTo(m_ownSize);
    resize(m_ownSize);
    const int below = frameGeometry().bottom() - available.bottom();
    if (!isFirstTime && below > 0)
        move(frameGeometry().x(), std::max(available.top(), frameGeometry().y() - below));
}

void PanelFrame::keyPressEvent(QKeyEvent* event) {
    const auto keys = event->keyCombination();
    if (event->key() == Qt::Key_Escape)
        close();
    else if (keys == QKeyCombination(Qt::META, Qt::Key_Q) ||
             keys == QKeyCombination(Qt::CTRL, Qt::Key_Q))
        m_menu.run(MenuCommand::quit);
    else
        QWidget::keyPressEvent(event);
}

void PanelFrame::mousePressEvent(QMouseEvent* event) {
    // Who opens it by a double click wants to see it.
    const bool isOnIcon = m_anchor && m_anchor->contains(event->globalPosition().toPoint());
    if (isOnIcon &&
        !m_sinceOpened.hasExpired(QGuiApplication::styleHints()->mouseDoubleClickInterval()))
        return;
    QWidget::mousePressEvent(event);
}

void PanelFrame::paintEvent(QPaintEvent* /*event*/) {
    if (!isPopup())
        return;
    QPainter painter(this);
    auto line = palette().color(QPalette::WindowText);
    line.setAlpha(90);
    painter.setPen(line);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace kestrove
