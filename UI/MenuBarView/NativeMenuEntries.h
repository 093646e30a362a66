#pragma once

#include "UI/MenuBarView/MenuContent.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kestrove {

class MenuBarView;

/// One line of a menu of the plain kind: text, a tick, no more.
struct NativeMenuEntry {
    enum class Kind : std::uint8_t { separator, text, command, checkBox, radioButton };

    /// Which entry this is, whatever it says: tells one that has changed from another one.
    std::string key;
    Kind kind = Kind::separator;
    std::string text = {};
    /// Ends the text, and stays when a text that is too long is cut.
    std::string ending = {};
    std::string help = {};
    /// The name of a symbol; empty for most.
    std::string symbol = {};
    bool isEnabled = true;
    bool isChecked = false;
    /// Empty for what cannot be clicked.
    std::function<void()> run = {};
};

/// The same menu for hosts that show nothing but menus. What the entries run is `view`'s, which
/// outlives them.
[[nodiscard]] std::vector<NativeMenuEntry> nativeMenuEntries(const MenuContent& content,
                                                             MenuBarView& view);

} // namespace kestrove
