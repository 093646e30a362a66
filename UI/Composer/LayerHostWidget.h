#pragma once

#include <QWidget>

namespace kestrove {

/// A native child window that hosts a display layer. Qt draws nothing in it.
class LayerHostWidget final : public QWidget {
    Q_OBJECT

public:
    explicit LayerHostWidget(QWidget* parent);

    QPaintEngine* paintEngine() const override { return nullptr; }
};

} // namespace kestrove
