#include "UI/SettingsView/SettingsWindow.h"

#include "UI/SettingsView/FormWidgets.h"
#include "UI/SettingsView/SettingsTexts.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

/// Of the screen: so much is left for panels and the window's frame.
constexpr double mostOfTheScreen = 0.9;
constexpr int preferredWidth = 520; ///< in points, of which 96 make an inch of the desktop
constexpr int pointsPerInch = 96;
constexpr int linesInReserve = 5;

/// A scrolling frame around the form, for screens that are too low for it. It remembers where the
/// keyboard was when a recorder let it go, so that Tab goes on from there.
class Frame final : public QWidget {
public:
    explicit Frame(SettingsView* view) {
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowTitle(qtText(SettingsTexts::windowTitle));
        auto* const scroll = new QScrollArea;
        scroll->setWidget(view);
        scroll->setWidgetResizable(true);
        scroll->setFrameShape(QFrame::NoFrame);
        scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        scroll->setFocusPolicy(Qt::NoFocus);
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(scroll);
        connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this,
                &QWidget::close);
        m_focusChanges = connect(qApp, &QApplication::focusChanged, this,
                                 [this](QWidget* old, QWidget* /*now*/) {
                                     if (old != nullptr && isAncestorOf(old))
                                         m_lastFocused = old;
                                 });
        fit(*view);
    }
    // The focus changes once more when the children go, and nobody is here any more then.
    ~Frame() override { disconnect(m_focusChanges); }

protected:
    bool focusNextPrevChild(bool next) override {
        if (focusWidget() == nullptr && m_lastFocused) {
            m_lastFocused->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
        return QWidget::focusNextPrevChild(next);
    }

private:
    void fit(const SettingsView& view) {
        const auto room = screen()->availableSize() * mostOfTheScreen;
        const int preferred = preferredWidth * view.logicalDpiX() / pointsPerInch;
        const int width =
            std::min(std::max(preferred, view.minimumSizeHint().width()), room.width());
        const int height =
            view.hasHeightForWidth() ? view.heightForWidth(width) : view.sizeHint().height();
        // A failure has a line or two more to say.
        const int more = linesInReserve * view.fontMetrics().lineSpacing();
        resize(width, std::min(height + more, room.height()));
    }

    QPointer<QWidget> m_lastFocused;
    QMetaObject::Connection m_focusChanges;
};

/// Qt takes a top-level widget of no special kind for a part of a window.
QAccessibleInterface* makeWindowInterface(const QString& /*className*/, QObject* object) {
    auto* const frame = dynamic_cast<Frame*>(object);
    return frame == nullptr ? nullptr : new QAccessibleWidget(frame, QAccessible::Window);
}

} // namespace

SettingsWindow::SettingsWindow(SettingsViewCollaborators collaborators,
                               std::function<void(QWidget&)> bringToFront)
    : m_with(std::move(collaborators))
    , m_bringToFront(std::move(bringToFront)) {
    // Qt does not add one that it has already.
    QAccessible::installFactory(makeWindowInterface);
}

SettingsWindow::~SettingsWindow() {
    delete m_widget;
}

void SettingsWindow::open() {
    // A window that was closed lives on until the main loop deletes it.
    if (m_widget && !m_widget->isVisible())
        delete m_widget;
    if (!m_widget)
        m_widget = new Frame(new SettingsView(m_with));
    m_widget->setWindowState(m_widget->windowState() & ~Qt::WindowMinimized);
    m_widget->show();
    m_widget->raise();
    m_widget->activateWindow();
    if (m_bringToFront)
        m_bringToFront(*m_widget);
}

} // namespace kestrove
