#pragma once

#include "Async/TaskScope.h"
#include "Core/AppController/AppController.h"
#include "Core/Settings/AppSettings.h"
#include "UI/SourcePicker/PickerHeader.h"
#include "UI/SourcePicker/SourcePickerModel.h"
#include "UI/SourcePicker/TileSection.h"

#include <QLabel>
#include <QScrollArea>
#include <QWidget>

#include <array>
#include <optional>
#include <vector>

namespace kestrove {

/// The content of the picker: a view over its model, the settings and the controller, which outlive
/// it. A click on a tile is one call into the controller; what comes of it is seen when it is
/// published. The keyboard has one place among the tiles, which the arrows move.
///
/// Thread: main.
class SourcePickerView final : public QWidget {
public:
    SourcePickerView(MainLoop& loop, SourcePickerModel& model, AppSettings& settings,
                     AppController& controller);

    /// From the top again, with the keyboard on the first tile.
    void startOver();
    /// Lists and pictures anew; happens by itself whenever the view comes on screen.
    void refresh();

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] SourcePickerContent content() const;
    [[nodiscard]] QWidget* makeBody();
    [[nodiscard]] QWidget* makeEmptyState();
    template <class Value>
    void observe(const Published<Value>& field);
    void scheduleRender();
    void render();
    void renderEmptyState(const SourcePickerEmptyState& state);
    [[nodiscard]] TileActions tileActions();
    [[nodiscard]] std::vector<std::size_t> tileCounts() const;
    [[nodiscard]] std::optional<TilePlace> placeOf(CaptureSource source) const;
    [[nodiscard]] SourceTile& tileAt(TilePlace place) const;
    /// As `tileAfter`, on past those that cannot be ticked.
    [[nodiscard]] std::optional<TilePlace> enabledTileAfter(TilePlace from, TileMove move) const;
    void move(CaptureSource from, TileMove move);
    void focusTile(TilePlace place);
    void setCurrent(std::optional<CaptureSource> source);
    [[nodiscard]] bool isKeyboardOnTile() const;
    /// Where the current tile has gone, another one is it, and has the keyboard if that one had it.
    void keepCurrent(bool takesKeyboard);

    SourcePickerModel& m_model;
    AppSettings& m_settings;
    AppController& m_controller;
    PickerHeader* m_header;
    QScrollArea* m_scroll;
    QWidget* m_emptyState;
    QLabel* m_emptySymbol;
    QLabel* m_emptyText;
    std::array<TileSection*, 2> m_sections{};
    /// Where the keyboard is, or comes to.
    std::optional<CaptureSource> m_current;
    /// The keyboard has not been moved by the user yet: it goes to the first tile that there is.
    bool m_isAtStart = true;
    bool m_isRenderScheduled = false;
    std::vector<Subscription> m_observations;
    TaskScope m_tasks;
};

} // namespace kestrove
