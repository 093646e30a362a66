#pragma once

#include <QProxyStyle>

namespace kestrove {

/// The desktop's style with check boxes and radio buttons that can be told from the window. Qt's
/// own style, which is drawn where a desktop has none, outlines them by a darker shade of the
/// window: on a dark one they can hardly be seen. Other styles draw them as they do.
///
/// Each such button is given it and does not own it. Thread: main.
class IndicatorStyle final : public QProxyStyle {
public:
    /// `parent` owns it.
    explicit IndicatorStyle(QObject* parent) { setParent(parent); }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

} // namespace kestrove
