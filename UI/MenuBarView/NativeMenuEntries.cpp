#include "UI/MenuBarView/NativeMenuEntries.h"

#include "UI/MenuBarView/MenuBarView.h"

#include <utility>

#include <fmt/core.h>

namespace kestrove {

namespace {

using Kind = NativeMenuEntry::Kind;

/// Collects the entries from top to bottom.
class Entries {
public:
    explicit Entries(MenuBarView& view)
        : m_view(view) {}

    void separator(std::string key) {
        m_entries.push_back({.key = std::move(key), .kind = Kind::separator});
    }

    void text(std::string key, std::string text, std::string symbol = {}) {
        m_entries.push_back({.key = std::move(key),
                             .kind = Kind::text,
                             .text = std::move(text),
                             .symbol = std::move(symbol)});
    }

    void button(std::string key, const MenuButton& button) {
        m_entries.push_back(
            {.key = std::move(key),
             .kind = Kind::command,
             .text = button.label(),
             .ending = button.keyEquivalent ? "  " + *button.keyEquivalent : "",
             .help = button.help.value_or(""),
             .symbol = button.symbol.value_or(""),
             .isEnabled = button.isEnabled,
             .run = [&view = m_view, command = button.command] { view.run(command); }});
    }

    void followMode(const MenuFollowModeRow& row) {
        m_entries.push_back({.key = fmt::format("mode {}", rawValue(row.mode)),
                             .kind = Kind::radioButton,
                             .text = row.title,
                             .isChecked = row.isCurrent,
                             .run = [&view = m_view, mode = row.mode] { view.choose(mode); }});
    }

    void group(const std::string& name, const MenuSourceGroup& group) {
        separator(name + " separator");
        text(name + " header", group.header);
        for (const auto& row : group.rows)
            source(name, row);
        if (group.emptyText)
            text(name + " empty", *group.emptyText);
    }

    std::vector<NativeMenuEntry> take() { return std::move(m_entries); }

private:
    void source(const std::string& name, const MenuSourceRow& row) {
        auto ending = row.subtitle && !row.subtitle->empty() ? " — " + *row.subtitle : "";
        if (row.isLive)
            ending += "  ● LIVE";
        m_entries.push_back({.key = fmt::format("{} {}", name, row.source.identifier()),
                             .kind = Kind::checkBox,
                             .text = row.title,
                             .ending = std::move(ending),
                             .isEnabled = row.isEnabled,
                             .isChecked = row.isSelected,
                             .run = [&view = m_view, row] { view.toggle(row); }});
    }

    MenuBarView& m_view;
    std::vector<NativeMenuEntry> m_entries;
};

} // namespace

std::vector<NativeMenuEntry> nativeMenuEntries(const MenuContent& content, MenuBarView& view) {
    Entries entries(view);
    entries.text("name", content.header.productName);
    entries.text("status", content.header.statusMessage);
    if (const auto& recovery = content.recovery) {
        entries.separator("recovery separator");
        entries.text("guidance", recovery->guidance, recovery->symbol);
        entries.button("retry", recovery->retry);
        entries.button("preferences", recovery->openPreferences);
    }
    entries.separator("session separator");
    entries.button("session", content.session);
    if (content.picker)
        entries.button("picker", *content.picker);

    const auto& sources = content.sources;
    entries.separator("sources separator");
    entries.text("sources", sources.title);
    if (sources.note)
        entries.text("note", *sources.note);
    for (const auto& row : sources.followModes)
        entries.followMode(row);
    entries.group("display", sources.displays);
    entries.group("window", sources.windows);
    entries.separator("refresh separator");
    entries.button("refresh", sources.refresh);

    entries.separator("output separator");
    for (const auto& button : content.outputWindow)
        entries.button(fmt::format("output {}", std::to_underlying(button.command)), button);
    entries.separator("end separator");
    if (content.settings)
        entries.button("settings", *content.settings);
    entries.button("privacy", content.privacyPolicy);
    entries.button("quit", content.quit);
    return entries.take();
}

} // namespace kestrove
