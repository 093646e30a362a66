#pragma once

#include "UI/SourcePicker/SourcePickerContent.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>

#include <functional>

namespace kestrove {

/// The top of the picker: what it is for, how much is picked, and whether thumbnails are still to
/// come. Thread: main.
class PickerHeader final : public QWidget {
public:
    explicit PickerHeader(std::function<void()> refresh);

    void show(const SourcePickerContent& content);
    using QWidget::show;

private:
    QLabel* m_title;
    QLabel* m_caption;
    QLabel* m_count;
    QPushButton* m_refresh;
    QProgressBar* m_progress;
};

} // namespace kestrove
