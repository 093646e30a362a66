#include "UI/SourcePicker/PickerHeader.h"

#include "UI/Icons/SymbolIcon.h"
#include "UI/SettingsView/FormWidgets.h"
#include "UI/SourcePicker/PickerMeasures.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <utility>

namespace kestrove {

namespace {

constexpr double titleScale = 1.6;
// Points.
constexpr double gap = 12;
constexpr double progressHeight = 3;
constexpr double narrowestButton = 84;

} // namespace

PickerHeader::PickerHeader(std::function<void()> refresh)
    : m_title(new QLabel)
    , m_caption(new CaptionLabel(""))
    , m_count(new QLabel)
    , m_refresh(new QPushButton)
    , m_progress(new QProgressBar) {
    const PickerMeasures measures(*this);
    auto titleFont = scaledFont(m_title->font(), titleScale);
    titleFont.setBold(true);
    m_title->setFont(titleFont);
    connect(m_refresh, &QPushButton::clicked, this, [action = std::move(refresh)] { action(); });
    m_refresh->setAutoDefault(false);
    m_refresh->setMinimumWidth(measures.pixels(narrowestButton));
    m_progress->setTextVisible(false);
    m_progress->setFixedHeight(measures.pixels(progressHeight));
    m_progress->setAccessibleName(qtText(SourcePickerTexts::loading));
    // The tiles below do not jump when it goes.
    auto policy = m_progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_progress->setSizePolicy(policy);

    auto* const texts = new QVBoxLayout;
    texts->setSpacing(measures.pixels(2));
    texts->addWidget(m_title);
    texts->addWidget(m_caption);
    auto* const line = new QHBoxLayout;
    const int margin = measures.margin();
    line->setContentsMargins(margin, measures.pixels(gap + 2), margin, 0);
    line->setSpacing(measures.pixels(gap));
    line->addLayout(texts, 1);
    line->addWidget(m_count, 0, Qt::AlignVCenter);
    line->addWidget(m_refresh, 0, Qt::AlignVCenter);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(measures.pixels(gap));
    layout->addLayout(line);
    layout->addWidget(m_progress);
}

void PickerHeader::show(const SourcePickerContent& content) {
    m_title->setText(qtText(content.title));
    m_caption->setText(qtText(content.caption));
    m_count->setText(qtText(content.selectionCount));
    m_refresh->setText(qtText(content.refreshLabel));
    if (m_refresh->icon().isNull())
        m_refresh->setIcon(symbolIcon(content.refreshSymbol));
    // Without a list, nobody knows how much there is to do.
    m_progress->setRange(0, content.tileCount());
    m_progress->setValue(content.pictureCount());
    m_progress->setVisible(content.isLoading);
}

} // namespace kestrove
