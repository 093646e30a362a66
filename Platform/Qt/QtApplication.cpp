#include "Platform/Qt/QtApplication.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>
#include <QWindow>

#include <utility>

namespace kestrove {

namespace {

void requestFocus(QWindow& window) {
    window.raise();
    window.requestActivate();
}

} // namespace

QtApplication::QtApplication(MainLoop& loop, std::optional<std::string> bundleIdentifier,
                             BringToFront bringToFront)
    : m_bundleIdentifier(std::move(bundleIdentifier))
    , m_bringToFront(bringToFront ? std::move(bringToFront) : requestFocus)
    , m_scope(loop) {
    // Posted: some of Qt's platforms report the change from within the call that caused it.
    m_stateConnection = QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged,
                                         qGuiApp, [this](Qt::ApplicationState state) {
                                             if (state == Qt::ApplicationActive)
                                                 m_scope.post([this] { m_becameActive.emit(); });
                                         });
}

QtApplication::~QtApplication() {
    QObject::disconnect(m_stateConnection);
}

bool QtApplication::isActive() const {
    return QGuiApplication::focusWindow() != nullptr;
}

void QtApplication::activateIgnoringOtherApps() {
    for (auto* window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible() && window->type() == Qt::Window) {
            m_bringToFront(*window);
            return;
        }
    }
}

void QtApplication::quit() {
    // Not at once: the caller may be anywhere inside what is about to be taken down. And `exit`
    // rather than `quit`, which asks every window first.
    m_scope.post([] { QCoreApplication::exit(0); });
}

bool QtApplication::openURL(const std::string& url) {
    return QDesktopServices::openUrl(QUrl(QString::fromStdString(url)));
}

Subscription QtApplication::onBecameActive(std::function<void()> callback) {
    return m_becameActive.subscribe(std::move(callback));
}

} // namespace kestrove
