#pragma once

#include <QObject>
#include <QWindow>

#include <functional>

namespace kestrove {

/// Tells of every window of this program, whoever makes it: before it is seen for the first time,
/// and before it goes. Menus and tool tips are windows too.
///
/// Thread: main, that of the QApplication, which outlives it.
class OwnWindows final : public QObject {
public:
    using Callback = std::function<void(WId window)>;

    OwnWindows(Callback created, Callback goes);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Callback m_created;
    Callback m_goes;
};

} // namespace kestrove
