#include "UI/MenuBarView/MenuBarIconLabel.h"

#include "UI/Icons/SymbolIcon.h"

namespace kestrove {

QIcon menuBarIconLabel() {
    const auto image = symbolIcon("MenuBarIcon");
    return image.isNull() ? symbolIcon("rectangle.on.rectangle") : image;
}

} // namespace kestrove
