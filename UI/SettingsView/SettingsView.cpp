#include "UI/SettingsView/SettingsView.h"

#include "UI/SettingsView/FormWidgets.h"
#include "UI/SettingsView/SettingsTexts.h"

#include <QHBoxLayout>
#include <QRadioButton>
#include <QVBoxLayout>

#include <utility>

namespace kestrove {

SettingsView::SettingsView(SettingsViewCollaborators collaborators, QWidget* parent)
    : QWidget(parent)
    , m_settings(collaborators.settings)
    , m_globalShortcuts(collaborators.globalShortcuts)
    , m_indicators(new IndicatorStyle(this))
    , m_shortcuts(collaborators.settings, collaborators.keyboard)
    , m_tasks(collaborators.loop) {
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(makeFollowSection());
    layout->addWidget(makeOutputSection());
    layout->addWidget(makeStartSection());
    layout->addWidget(m_shortcuts.widget());
    layout->addStretch();
    render();
    observe();
}

QWidget* SettingsView::makeFollowSection() {
    const FormSection section(SettingsTexts::followSection);
    auto* const title = new QLabel(qtText(SettingsTexts::modeTitle));
    section.layout->addWidget(title);
    for (const auto mode : allFollowModes) {
        auto* const choice = new QRadioButton(qtText(SettingsTexts::label(mode)));
        choice->setStyle(m_indicators);
        choice->setAccessibleDescription(title->text());
        m_modes.addButton(choice, static_cast<int>(mode));
        section.layout->addWidget(choice);
    }
    // By the user's hand only: what is rendered is no edit.
    connect(&m_modes, &QButtonGroup::idClicked, this,
            [this](int chosen) { m_settings.followMode.set(static_cast<FollowMode>(chosen)); });
    section.layout->addWidget(new CaptionLabel(SettingsTexts::followCaption));
    return section.box;
}

QWidget* SettingsView::makeOutputSection() {
    const FormSection section(SettingsTexts::outputSection);
    auto* const line = new QHBoxLayout;
    line->addWidget(&m_frameRate);
    line->addStretch();
    line->addWidget(&m_frameRateStepper);
    m_frameRateStepper.onStep = [this](std::int64_t rate) {
        m_settings.targetFPS.set(rate);
        // At once: the next step may come before the picture of this one.
        m_frameRateStepper.setValue(m_settings.targetFPS.get());
    };
    section.layout->addLayout(line);
    section.layout->addWidget(makeToggle(SettingsTexts::alwaysOnTop, m_settings.alwaysOnTop));
    section.layout->addWidget(
        makeToggle(SettingsTexts::hideOutputWindow, m_settings.hideOutputWindow));
    section.layout->addWidget(new CaptionLabel(SettingsTexts::hideCaption));
    return section.box;
}

QWidget* SettingsView::makeStartSection() {
    const FormSection section(SettingsTexts::startSection);
    section.layout->addWidget(makeToggle(SettingsTexts::autoStart, m_settings.autoStart));
    return section.box;
}

QCheckBox* SettingsView::makeToggle(std::string_view label, Published<bool>& setting) {
    auto* const toggle = new QCheckBox(qtText(label));
    toggle->setStyle(m_indicators);
    connect(toggle, &QCheckBox::clicked, this,
            [&setting](bool isChecked) { setting.set(isChecked); });
    m_renderToggles.emplace_back([toggle, &setting] { toggle->setChecked(setting.get()); });
    return toggle;
}

template <class Value>
void SettingsView::observe(const Published<Value>& field) {
    m_observations.push_back(field.subscribe([this](const Value&) { scheduleRender(); }));
}

void SettingsView::observe() {
    observe(m_settings.followMode);
    observe(m_settings.targetFPS);
    observe(m_settings.alwaysOnTop);
    observe(m_settings.hideOutputWindow);
    observe(m_settings.autoStart);
    observe(m_settings.shortcutBindings);
    observe(m_globalShortcuts.registeredActions());
    observe(m_globalShortcuts.operationFailures());
    observe(m_globalShortcuts.duplicateActions());
    observe(m_globalShortcuts.startupRecoveryState);
}

void SettingsView::scheduleRender() {
    // A change is announced before it can be read, and several of them make one picture.
    if (std::exchange(m_isRenderScheduled, true))
        return;
    m_tasks.post([this] {
        m_isRenderScheduled = false;
        render();
    });
}

void SettingsView::render() {
    renderMode();
    const auto rate = m_settings.targetFPS.get();
    const auto rateText = qtText(SettingsTexts::frameRate(rate));
    m_frameRate.setText(rateText);
    m_frameRateStepper.setAccessibleName(rateText);
    m_frameRateStepper.setValue(rate);
    for (const auto& renderToggle : m_renderToggles)
        renderToggle();
    m_shortcuts.render(ShortcutRegistryState::of(m_globalShortcuts));
}

void SettingsView::renderMode() {
    auto* const chosen = m_modes.button(static_cast<int>(m_settings.followMode.get()));
    chosen->setChecked(true);
    // The keyboard comes to the choice that is made, and goes on from there by the arrow keys: Qt
    // sees to that only once a choice has had the focus, and takes the first one until then.
    for (auto* const choice : m_modes.buttons())
        choice->setFocusPolicy(choice == chosen ? Qt::StrongFocus : Qt::ClickFocus);
}

} // namespace kestrove
