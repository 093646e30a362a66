#include "UI/Icons/SymbolIcon.h"

#include <QBuffer>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QImageReader>
#include <QPainter>
#include <QPalette>

#include <utility>

/// Outside of any namespace, as the macro wants it: without it, the linker drops the resources of a
/// library.
static void initializeIcons() {
    Q_INIT_RESOURCE(Icons);
}

namespace kestrove {

namespace {

/// What trays and menus show at single and at double density.
constexpr int usualSizes[] = {16, 22, 24, 32, 44, 48, 64};

QColor textColor(QIcon::Mode mode) {
    const auto palette = QGuiApplication::palette();
    switch (mode) {
    case QIcon::Disabled:
        return palette.color(QPalette::Disabled, QPalette::Text);
    case QIcon::Selected:
        return palette.color(QPalette::Active, QPalette::HighlightedText);
    case QIcon::Normal:
    case QIcon::Active:
        return palette.color(QPalette::Active, QPalette::Text);
    }
    std::unreachable();
}

class SymbolIconEngine final : public QIconEngine {
public:
    explicit SymbolIconEngine(QByteArray drawing)
        : m_drawing(std::move(drawing)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const auto density = painter->device()->devicePixelRatio();
        const auto side = qMin(rect.width(), rect.height());
        QRect place(0, 0, side, side);
        place.moveCenter(rect.center());
        painter->drawImage(place, image(qRound(side * density), mode));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect({0, 0}, size), mode, state);
        return result;
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        QList<QSize> sizes;
        for (const int side : usualSizes)
            sizes.append({side, side});
        return sizes;
    }

    QIconEngine* clone() const override { return new SymbolIconEngine(*this); }
    QString key() const override { return QStringLiteral("kestrove-symbol"); }

private:
    [[nodiscard]] QImage image(int side, QIcon::Mode mode) const {
        auto drawing = m_drawing;
        drawing.replace("currentColor", textColor(mode).name().toLatin1());
        QBuffer buffer(&drawing);
        QImageReader reader(&buffer, "svg");
        reader.setScaledSize({side, side});
        reader.setBackgroundColor(Qt::transparent);
        return reader.read();
    }

    QByteArray m_drawing;
};

} // namespace

QIcon symbolIcon(std::string_view name) {
    initializeIcons();
    QFile file(QStringLiteral(":/kestrove/icons/%1.svg")
                   .arg(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()))));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QIcon(new SymbolIconEngine(file.readAll()));
}

} // namespace kestrove
