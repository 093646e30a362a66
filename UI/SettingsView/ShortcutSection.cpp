#include "UI/SettingsView/ShortcutSection.h"

#include "UI/SettingsView/SettingsTexts.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <optional>

namespace kestrove {

namespace {

constexpr int rowSpacing = 4;

QLabel* makeNote() {
    auto* const note = new QLabel;
    note->setWordWrap(true);
    return note;
}

void showOptional(QLabel& label, std::optional<std::string_view> text) {
    label.setText(qtText(text.value_or("")));
    label.setVisible(text.has_value());
}

} // namespace

ShortcutSection::ShortcutSection(AppSettings& settings, const RecorderKeyboard& keyboard)
    : m_settings(settings)
    , m_form(SettingsTexts::shortcutSection)
    , m_registration(new StatusLabel)
    , m_summary(makeNote())
    , m_note(makeNote()) {
    for (const auto action : allShortcutActions)
        m_rows.emplace(action, makeRow(action, keyboard));
    m_form.layout->addWidget(m_registration);
    m_form.layout->addWidget(m_summary);
    m_form.layout->addWidget(m_note);
    m_form.layout->addWidget(new CaptionLabel(SettingsTexts::shortcutCaption));
    auto* const reset = new QPushButton(qtText(SettingsTexts::resetButton));
    reset->setAutoDefault(false);
    QObject::connect(reset, &QPushButton::clicked, reset, [this] {
        m_settings.shortcutBindings.set(GlobalShortcuts::defaultBindings());
    });
    m_form.layout->addWidget(reset, 0, Qt::AlignLeft);
}

ShortcutSection::Row ShortcutSection::makeRow(ShortcutAction action,
                                              const RecorderKeyboard& keyboard) {
    const auto label = qtText(SettingsTexts::label(action));
    const Row row{new ShortcutRecorder(label, keyboard), new StatusLabel};
    row.recorder->setOnCapture(
        [this, action](const ShortcutBinding& binding) { capture(action, binding); });
    auto* const stack = new QVBoxLayout;
    stack->setSpacing(rowSpacing);
    auto* const line = new QHBoxLayout;
    line->addWidget(new QLabel(label));
    line->addStretch();
    line->addWidget(row.recorder);
    stack->addLayout(line);
    stack->addWidget(row.status);
    m_form.layout->addLayout(stack);
    return row;
}

void ShortcutSection::capture(ShortcutAction action, const ShortcutBinding& binding) {
    auto bindings = m_settings.shortcutBindings.get();
    bindings.insert_or_assign(action, binding);
    m_settings.shortcutBindings.set(std::move(bindings));
}

void ShortcutSection::render(const ShortcutRegistryState& state) {
    const auto& bindings = m_settings.shortcutBindings.get();
    for (const auto& [action, row] : m_rows) {
        const auto found = bindings.find(action);
        const auto status = shortcutStatus(action, state);
        row.recorder->update(
            found != bindings.end() ? found->second : GlobalShortcuts::defaultBindings().at(action),
            qtText(status.text));
        row.status->show(status);
    }
    const auto registration = shortcutRegistrationStatus(state);
    m_registration->show(registration.line);
    showOptional(*m_summary, registration.failureSummary);
    showOptional(*m_note, registration.startupNote);
}

} // namespace kestrove
