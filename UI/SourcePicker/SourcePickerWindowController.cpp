#include "UI/SourcePicker/SourcePickerWindowController.h"

#include "UI/SourcePicker/PickerMeasures.h"
#include "UI/SourcePicker/SourcePickerView.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

#include <utility>

namespace kestrove {

namespace {

// Points.
constexpr double contentWidth = 1000;
constexpr double contentHeight = 760;
/// Of the screen: so much is left for panels and the window's frame.
constexpr double mostOfTheScreen = 0.9;

class Window final : public QWidget {
public:
    Window() {
        setWindowTitle(QString::fromUtf8(SourcePickerTexts::windowTitle));
        const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
        if (screen == nullptr)
            screen = QGuiApplication::primaryScreen();
        const PickerMeasures measures(*this);
        const auto room = screen->availableGeometry();
        QRect place(QPoint(), QSize(measures.pixels(contentWidth), measures.pixels(contentHeight))
                                  .boundedTo(room.size() * mostOfTheScreen));
        place.moveCenter(room.center());
        setGeometry(place);
    }

protected:
    void changeEvent(QEvent* event) override {
        QWidget::changeEvent(event);
        // Who turns to another window is done here.
        if (event->type() == QEvent::ActivationChange && !isActiveWindow())
            hide();
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape || event->matches(QKeySequence::Close))
            hide();
        else
            QWidget::keyPressEvent(event);
    }
};

} // namespace

SourcePickerWindowController::SourcePickerWindowController(
    Surroundings surroundings, std::function<WindowIDSet()> excludedWindowIDs)
    : m_with(std::move(surroundings))
    , m_model(m_with.platform, std::move(excludedWindowIDs))
    , m_window(std::make_unique<Window>())
    , m_view(
          new SourcePickerView(m_with.platform.loop, m_model, m_with.settings, m_with.controller)) {
    auto* const layout = new QVBoxLayout(m_window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
}

SourcePickerWindowController::~SourcePickerWindowController() = default;

void SourcePickerWindowController::show() {
    if (m_with.application.activationPolicy() != ActivationPolicy::regular)
        m_with.application.setActivationPolicy(ActivationPolicy::regular);
    // The view refreshes when it comes on screen. Where it is there already, it is told.
    if (m_window->isVisible() && !m_window->isMinimized())
        m_view->refresh();
    else
        m_view->startOver();
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    if (m_with.bringToFront)
        m_with.bringToFront(*m_window);
}

} // namespace kestrove
