#include "UI/ShortcutRecorder/AccessibleRecorder.h"

#include "UI/ShortcutRecorder/RecorderAccessibility.h"
#include "UI/ShortcutRecorder/ShortcutRecorder.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace kestrove {

namespace {

class AccessibleRecorder final : public QAccessibleWidget {
public:
    explicit AccessibleRecorder(ShortcutRecorder& recorder)
        : QAccessibleWidget(&recorder, QAccessible::PushButton)
        , m_recorder(recorder) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        switch (kind) {
        case QAccessible::Value:
            return m_recorder.accessibleValue();
        case QAccessible::Help:
            return QString::fromUtf8(recorderHint.data(),
                                     static_cast<qsizetype>(recorderHint.size()));
        default:
            return QAccessibleWidget::text(kind);
        }
    }

    [[nodiscard]] QStringList actionNames() const override {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& actionName) override {
        if (actionName == pressAction())
            m_recorder.performPress();
        else
            QAccessibleWidget::doAction(actionName);
    }

private:
    ShortcutRecorder& m_recorder;
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    auto* const recorder = dynamic_cast<ShortcutRecorder*>(object);
    return recorder == nullptr ? nullptr : new AccessibleRecorder(*recorder);
}

} // namespace

void installRecorderAccessibility() {
    // Qt does not add one that it has already.
    QAccessible::installFactory(makeInterface);
}

} // namespace kestrove
