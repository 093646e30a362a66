#include "Platform/X11/WindowIdentity/WindowIdentity.h"

#include "Platform/X11/Properties.h"
#include "Platform/X11/WindowIdentity/ClientProcesses.h"
#include "Platform/X11/WindowIdentity/CompoundText.h"
#include "Platform/X11/WindowIdentity/PropertyText.h"
#include "Platform/X11/WindowIdentity/PropertyValues.h"
#include "Platform/X11/WindowIdentity/WindowLayer.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unistd.h>

namespace kestrove::x11 {
namespace {

constexpr std::uint32_t iconicState = 3;
constexpr std::uint32_t everyWorkspace = 0xFFFFFFFF;

struct Question {
    ClientWindow client;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t position;
    xcb_get_property_cookie_t name;
    xcb_get_property_cookie_t oldName;
    xcb_get_property_cookie_t process;
    xcb_get_property_cookie_t machine;
    std::array<xcb_get_property_cookie_t, 3> applicationNames;
    xcb_get_property_cookie_t windowClass;
    xcb_get_property_cookie_t types;
    xcb_get_property_cookie_t opacity;
    xcb_get_property_cookie_t frameOpacity;
    xcb_get_property_cookie_t shadow;
    xcb_get_property_cookie_t state;
    xcb_get_property_cookie_t oldState;
    xcb_get_property_cookie_t workspace;
};

/// What is the same for all windows of one reading.
struct Surroundings {
    std::optional<std::uint32_t> currentWorkspace;
    std::string machine;
    const ClientProcesses& processes;
};

Question ask(Connection& connection, const ClientWindow& client) {
    auto* const server = connection.get();
    const auto property = [&](std::string_view name) {
        return askProperty(connection, client.window, name);
    };
    return {
        .client = client,
        .attributes = xcb_get_window_attributes(server, client.window),
        .geometry = xcb_get_geometry(server, client.window),
        .position = xcb_translate_coordinates(server, client.window, connection.root(), 0, 0),
        .name = property("_NET_WM_NAME"),
        .oldName = property("WM_NAME"),
        .process = property("_NET_WM_PID"),
        .machine = property("WM_CLIENT_MACHINE"),
        .applicationNames = {property("_GTK_APPLICATION_ID"), property("_BAMF_DESKTOP_FILE"),
                             property("_KDE_NET_WM_DESKTOP_FILE")},
        .windowClass = property("WM_CLASS"),
        .types = property("_NET_WM_WINDOW_TYPE"),
        .opacity = property("_NET_WM_WINDOW_OPACITY"),
        .frameOpacity = askProperty(connection, client.topLevel, "_NET_WM_WINDOW_OPACITY"),
        .shadow = property("_GTK_FRAME_EXTENTS"),
        .state = property("_NET_WM_STATE"),
        .oldState = property("WM_STATE"),
        .workspace = property("_NET_WM_DESKTOP"),
    };
}

std::optional<std::string> unlessEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::optional<std::string> hearTitle(Connection& connection, const Question& question) {
    const auto name = hearBytes(connection, question.name);
    const auto oldName = hearBytes(connection, question.oldName);
    if (name && !name->bytes.empty())
        return unlessEmpty(textOfUtf8(name->bytes));
    if (!oldName)
        return std::nullopt;
    if (oldName->type == XCB_ATOM_STRING)
        return unlessEmpty(textOfLatin1(oldName->bytes));
    if (oldName->type == connection.atom("COMPOUND_TEXT"))
        return unlessEmpty(textOfCompound(oldName->bytes));
    return unlessEmpty(textOfUtf8(oldName->bytes));
}

std::optional<ProcessID> hearProcess(Connection& connection, const Question& question,
                                     const Surroundings& surroundings) {
    const auto number = hearWord(connection, question.process);
    const auto machine = hearBytes(connection, question.machine);
    const auto process = processOf(number, machine ? std::optional(machine->bytes) : std::nullopt,
                                   surroundings.machine);
    return process ? process : surroundings.processes.of(question.client.window);
}

std::optional<std::string> hearClass(Connection& connection, const Question& question) {
    const auto property = hearBytes(connection, question.windowClass);
    return property ? classOf(property->bytes) : std::nullopt;
}

std::optional<std::string> hearApplication(Connection& connection, const Question& question) {
    std::optional<std::string> found;
    for (const auto asked : question.applicationNames) {
        const auto property = hearBytes(connection, asked);
        if (!found && property)
            found = applicationOf(property->bytes);
    }
    return found;
}

double hearAlpha(Connection& connection, const Question& question) {
    constexpr double opaque = 0xFFFFFFFF;
    const auto own = hearWord(connection, question.opacity);
    const auto frame = hearWord(connection, question.frameOpacity);
    const auto opacity = own ? own : frame;
    return opacity ? *opacity / opaque : 1;
}

bool hearHidden(Connection& connection, const Question& question) {
    const auto states = hearWords(connection, question.state);
    const auto oldState = hearWord(connection, question.oldState);
    const auto hidden = connection.atom("_NET_WM_STATE_HIDDEN");
    return std::ranges::find(states, hidden) != states.end() || oldState == iconicState;
}

bool hearElsewhere(Connection& connection, const Question& question,
                   const Surroundings& surroundings) {
    const auto workspace = hearWord(connection, question.workspace);
    return workspace && surroundings.currentWorkspace && *workspace != everyWorkspace &&
           *workspace != *surroundings.currentWorkspace;
}

Rect boundsOf(const xcb_get_geometry_reply_t& geometry,
              const xcb_translate_coordinates_reply_t& position,
              const std::vector<std::uint32_t>& shadow) {
    return withoutShadow({static_cast<double>(position.dst_x), static_cast<double>(position.dst_y),
                          static_cast<double>(geometry.width),
                          static_cast<double>(geometry.height)},
                         shadow);
}

/// Hears every answer, also those of a window that has gone, or they would pile up.
std::optional<WindowIdentity> hear(Connection& connection, const Question& question,
                                   const Surroundings& surroundings) {
    const auto attributes = connection.reply(xcb_get_window_attributes_reply, question.attributes);
    const auto geometry = connection.reply(xcb_get_geometry_reply, question.geometry);
    const auto position = connection.reply(xcb_translate_coordinates_reply, question.position);
    WindowIdentity identity;
    identity.windowID = question.client.window;
    identity.topLevel = question.client.topLevel;
    identity.title = hearTitle(connection, question);
    identity.processID = hearProcess(connection, question, surroundings);
    identity.bundleIdentifier = hearApplication(connection, question);
    identity.applicationClass = hearClass(connection, question);
    if (!identity.bundleIdentifier)
        identity.bundleIdentifier = identity.applicationClass;
    const auto types = hearWords(connection, question.types);
    identity.alpha = hearAlpha(connection, question);
    const auto shadow = hearWords(connection, question.shadow);
    const bool isHidden = hearHidden(connection, question);
    const bool isElsewhere = hearElsewhere(connection, question, surroundings);
    if (!attributes || !geometry || !position)
        return std::nullopt;
    identity.isOverrideRedirect = attributes->override_redirect != 0;
    identity.layer = windowLayer(connection, types,
                                 identity.isOverrideRedirect ? Management::overrideRedirect
                                                             : Management::managed);
    identity.rootBounds = boundsOf(*geometry, *position, shadow);
    identity.isOnScreen =
        attributes->map_state == XCB_MAP_STATE_VIEWABLE && !isHidden && !isElsewhere;
    return identity;
}

std::string thisMachine() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : std::string();
}

} // namespace

std::vector<WindowIdentity> readIdentities(Connection& connection,
                                           std::span<const ClientWindow> windows) {
    const auto workspace = askProperty(connection, connection.root(), "_NET_CURRENT_DESKTOP");
    std::vector<Question> questions;
    for (const auto& window : windows)
        questions.push_back(ask(connection, window));
    // After the windows' properties: it is heard before them, which then have arrived, too.
    ClientProcesses processes(connection, windows);
    const Surroundings surroundings{hearWord(connection, workspace), thisMachine(), processes};
    processes.hear();
    std::vector<WindowIdentity> identities;
    for (const auto& question : questions) {
        if (auto identity = hear(connection, question, surroundings))
            identities.push_back(std::move(*identity));
    }
    return identities;
}

} // namespace kestrove::x11
