#include "Platform/Qt/QtApplicationObject.h"

#include <QEvent>

namespace kestrove {

bool QtApplicationObject::event(QEvent* event) {
    if (event->type() != QEvent::Quit || !quitRequested)
        return QApplication::event(event);
    event->accept();
    quitRequested();
    return true;
}

} // namespace kestrove
