#pragma once

#include <QApplication>

#include <functional>

namespace kestrove {

/// Qt's one object for the application. When the user's session ends, Qt would close one window
/// after the other and stay where one of them is only hidden by that; here the application decides.
///
/// Thread: main.
class QtApplicationObject final : public QApplication {
public:
    using QApplication::QApplication;

    /// The desktop wants the application to end. While it is empty, Qt does as it likes.
    std::function<void()> quitRequested;

protected:
    bool event(QEvent* event) override;
};

} // namespace kestrove
