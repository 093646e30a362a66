#include "UI/SourcePicker/SourcePickerView.h"

#include "UI/Icons/SymbolIcon.h"
#include "UI/SettingsView/FormWidgets.h"
#include "UI/SourcePicker/PickerMeasures.h"
#include "UI/SourcePicker/SourceTile.h"

#include <QEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

// Points.
constexpr double sectionGap = 20;
constexpr double emptySymbolSize = 32;

} // namespace

SourcePickerView::SourcePickerView(MainLoop& loop, SourcePickerModel& model, AppSettings& settings,
                                   AppController& controller)
    : m_model(model)
    , m_settings(settings)
    , m_controller(controller)
    , m_header(new PickerHeader([this] { refresh(); }))
    , m_scroll(new QScrollArea)
    , m_emptyState(makeEmptyState())
    , m_tasks(loop) {
    m_scroll->setWidget(makeBody());
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(m_scroll, 1);
    layout->addWidget(m_emptyState, 1);
    observe(model.displays());
    observe(model.windows());
    observe(model.isLoading());
    observe(settings.followMode);
    observe(settings.manualSources);
    observe(controller.activeSource());
    render();
}

QWidget* SourcePickerView::makeBody() {
    auto* const body = new QWidget;
    const PickerMeasures measures(*this);
    auto* const layout = new QVBoxLayout(body);
    const int margin = measures.margin();
    layout->setContentsMargins(margin, measures.pixels(4), margin, margin);
    layout->setSpacing(measures.pixels(sectionGap));
    for (auto& section : m_sections) {
        section = new TileSection(tileActions());
        layout->addWidget(section);
    }
    layout->addStretch();
    return body;
}

QWidget* SourcePickerView::makeEmptyState() {
    auto* const empty = new QWidget;
    m_emptySymbol = new QLabel;
    m_emptySymbol->setAlignment(Qt::AlignCenter);
    m_emptyText = new CaptionLabel("");
    m_emptyText->setFont(font());
    m_emptyText->setAlignment(Qt::AlignCenter);
    auto* const layout = new QVBoxLayout(empty);
    layout->setSpacing(PickerMeasures(*this).pixels(12));
    layout->addStretch(2);
    layout->addWidget(m_emptySymbol);
    layout->addWidget(m_emptyText);
    layout->addStretch(3);
    return empty;
}

template <class Value>
void SourcePickerView::observe(const Published<Value>& field) {
    m_observations.push_back(field.subscribe([this](const Value&) { scheduleRender(); }));
}

void SourcePickerView::scheduleRender() {
    // A change is announced before it can be read, and several of them make one picture.
    if (std::exchange(m_isRenderScheduled, true))
        return;
    m_tasks.post([this] {
        m_isRenderScheduled = false;
        render();
    });
}

void SourcePickerView::refresh() {
    m_tasks.launch(m_model.refresh());
}

void SourcePickerView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
}

void SourcePickerView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // The symbol is drawn in the colours of the theme.
    if (event->type() == QEvent::PaletteChange)
        scheduleRender();
}

SourcePickerContent SourcePickerView::content() const {
    SourcePickerState state;
    state.displays = m_model.displays().get();
    state.windows = m_model.windows().get();
    state.isLoading = m_model.isLoading().get();
    state.picks = {m_settings.followMode.get(), m_settings.manualSources.get()};
    state.activeSource = m_controller.activeSource().get();
    return sourcePickerContent(state);
}

void SourcePickerView::render() {
    const auto shown = content();
    const bool wasOnTile = m_isAtStart || isKeyboardOnTile();
    m_header->show(shown);
    for (std::size_t index = 0; index < m_sections.size(); ++index)
        m_sections[index]->show(index < shown.sections.size() ? shown.sections[index]
                                                              : SourcePickerSection());
    if (shown.emptyState)
        renderEmptyState(*shown.emptyState);
    m_emptyState->setVisible(shown.emptyState.has_value());
    m_scroll->setVisible(!shown.emptyState);
    keepCurrent(wasOnTile);
}

void SourcePickerView::renderEmptyState(const SourcePickerEmptyState& state) {
    const int side = PickerMeasures(*this).pixels(emptySymbolSize);
    m_emptySymbol->setPixmap(
        symbolIcon(state.symbol).pixmap(QSize(side, side), QIcon::Disabled, QIcon::Off));
    m_emptyText->setText(qtText(state.text));
}

TileActions SourcePickerView::tileActions() {
    return {.tap =
                [this](const CaptureSourceInfo& info) {
                    m_controller.toggleSource(info.source, info.windowOwner);
                },
            .move = [this](CaptureSource from, TileMove direction) { move(from, direction); },
            .focused =
                [this](CaptureSource source) {
                    m_isAtStart = false;
                    setCurrent(source);
                }};
}

std::vector<std::size_t> SourcePickerView::tileCounts() const {
    std::vector<std::size_t> counts;
    counts.reserve(m_sections.size());
    for (const auto* const section : m_sections)
        counts.push_back(section->tiles().size());
    return counts;
}

std::optional<TilePlace> SourcePickerView::placeOf(CaptureSource source) const {
    for (std::size_t section = 0; section < m_sections.size(); ++section) {
        if (const auto index = m_sections[section]->indexOf(source))
            return TilePlace{section, *index};
    }
    return std::nullopt;
}

void SourcePickerView::move(CaptureSource from, TileMove move) {
    const auto place = placeOf(from);
    if (!place)
        return;
    if (const auto next = enabledTileAfter(*place, move))
        focusTile(*next);
}

SourceTile& SourcePickerView::tileAt(TilePlace place) const {
    return *m_sections[place.section]->tiles()[place.index];
}

std::optional<TilePlace> SourcePickerView::enabledTileAfter(TilePlace from, TileMove move) const {
    const auto columns = m_sections[from.section]->columnCount();
    const auto counts = tileCounts();
    auto next = tileAfter(from, move, columns, counts);
    if (move == TileMove::first || move == TileMove::last)
        move = move == TileMove::first ? TileMove::right : TileMove::left;
    while (next && !tileAt(*next).isEnabled())
        next = tileAfter(*next, move, columns, counts);
    return next;
}

void SourcePickerView::focusTile(TilePlace place) {
    auto& tile = tileAt(place);
    tile.setFocus(Qt::TabFocusReason);
    const int margin = PickerMeasures(*this).margin();
    m_scroll->ensureWidgetVisible(&tile, 0, margin);
    // The headline of the first row is seen together with it.
    if (place.section == 0 && place.index < m_sections[0]->columnCount())
        m_scroll->verticalScrollBar()->setValue(0);
}

void SourcePickerView::setCurrent(std::optional<CaptureSource> source) {
    m_current = source;
    for (const auto* const section : m_sections) {
        for (auto* const tile : section->tiles())
            tile->setFocusPolicy(tile->content().preview.id == source ? Qt::StrongFocus
                                                                      : Qt::ClickFocus);
    }
}

bool SourcePickerView::isKeyboardOnTile() const {
    const auto* const focused = focusWidget();
    return std::ranges::any_of(m_sections, [focused](const TileSection* section) {
        return std::ranges::find(section->tiles(), focused) != section->tiles().end();
    });
}

void SourcePickerView::keepCurrent(bool takesKeyboard) {
    const auto place = m_current ? placeOf(*m_current) : std::nullopt;
    const bool isThere = place && tileAt(*place).isEnabled();
    const auto first = enabledTileAfter({}, TileMove::first);
    if (isThere && !m_isAtStart)
        return setCurrent(m_current);
    if (!first)
        return setCurrent(std::nullopt);
    setCurrent(tileAt(*first).content().preview.id);
    // Not taken from the button, if the user is there.
    if (!takesKeyboard)
        return;
    const bool wasAtStart = m_isAtStart;
    focusTile(*first);
    m_isAtStart = wasAtStart;
}

void SourcePickerView::startOver() {
    m_isAtStart = true;
    m_scroll->verticalScrollBar()->setValue(0);
    keepCurrent(true);
}

} // namespace kestrove
