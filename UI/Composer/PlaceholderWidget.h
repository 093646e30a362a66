#pragma once

#include <QWidget>

namespace kestrove {

/// What the output window says while nothing is shared: two lines in the middle of a black area.
class PlaceholderWidget final : public QWidget {
    Q_OBJECT

public:
    explicit PlaceholderWidget(QWidget* parent);
};

} // namespace kestrove
