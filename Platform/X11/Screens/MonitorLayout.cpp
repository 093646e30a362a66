#include "Platform/X11/Screens/MonitorLayout.h"

#include "Platform/X11/Screens/Edid.h"

#include <algorithm>
#include <set>
#include <span>
#include <xcb/randr.h>

namespace kestrove::x11 {
namespace {

/// More than any EDID with its extension blocks has.
constexpr std::uint32_t edidWords = 1024;

struct MonitorQuestion {
    xcb_randr_monitor_info_t info;
    xcb_get_atom_name_cookie_t name;
    /// The EDID of each output.
    std::vector<xcb_randr_get_output_property_cookie_t> edids;
};

struct MonitorAnswer {
    Monitor monitor;
    /// The monitor's own name, unique in the server.
    std::string ownName;
    /// What the identifier is made of.
    std::string identity;
};

std::vector<MonitorQuestion> ask(Connection& connection) {
    std::vector<MonitorQuestion> questions;
    const auto listed =
        connection.reply(xcb_randr_get_monitors_reply,
                         xcb_randr_get_monitors(connection.get(), connection.root(), 1));
    if (!listed)
        return questions;
    const auto edid = connection.atom("EDID");
    for (auto each = xcb_randr_get_monitors_monitors_iterator(listed.get()); each.rem > 0;
         xcb_randr_monitor_info_next(&each)) {
        if (each.data->width == 0 || each.data->height == 0)
            continue;
        MonitorQuestion question{
            *each.data, xcb_get_atom_name(connection.get(), each.data->name), {}};
        const std::span outputs(
            xcb_randr_monitor_info_outputs(each.data),
            static_cast<std::size_t>(xcb_randr_monitor_info_outputs_length(each.data)));
        for (const auto output : outputs)
            question.edids.push_back(xcb_randr_get_output_property(
                connection.get(), output, edid, XCB_ATOM_ANY, 0, edidWords, 0, 0));
        questions.push_back(std::move(question));
    }
    return questions;
}

MonitorAnswer hear(Connection& connection, const MonitorQuestion& question) {
    MonitorAnswer answer;
    answer.monitor.rectangle = {question.info.x, question.info.y, question.info.width,
                                question.info.height};
    answer.monitor.isMain = question.info.primary != 0;
    if (const auto name = connection.reply(xcb_get_atom_name_reply, question.name))
        answer.ownName.assign(xcb_get_atom_name_name(name.get()),
                              static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
    answer.identity = answer.ownName;
    for (const auto asked : question.edids) {
        const auto edid = connection.reply(xcb_randr_get_output_property_reply, asked);
        if (!edid || edid->format != 8)
            continue;
        const std::span bytes(
            xcb_randr_get_output_property_data(edid.get()),
            static_cast<std::size_t>(xcb_randr_get_output_property_data_length(edid.get())));
        answer.identity.append(bytes.begin(), bytes.end());
        if (answer.monitor.name.empty())
            answer.monitor.name = edidDisplayName(bytes).value_or(std::string());
    }
    if (answer.monitor.name.empty())
        answer.monitor.name = answer.ownName;
    return answer;
}

/// Two displays of one make are told apart by where they are plugged in.
void makeNamesUnique(std::vector<MonitorAnswer>& answers) {
    std::multiset<std::string> names;
    for (const auto& answer : answers)
        names.insert(answer.monitor.name);
    for (auto& [monitor, ownName, identity] : answers) {
        if (names.count(monitor.name) > 1 && monitor.name != ownName)
            monitor.name += " (" + ownName + ")";
    }
}

/// Hashes that meet are moved apart in the order of the monitors' names, which does not depend on
/// the order in which the displays were plugged in.
void giveIdentifiers(std::vector<MonitorAnswer>& answers) {
    std::vector<MonitorAnswer*> byName;
    byName.reserve(answers.size());
    for (auto& answer : answers)
        byName.push_back(&answer);
    std::ranges::sort(byName, {}, [](const auto* answer) { return answer->ownName; });
    std::set<DisplayID> taken{0};
    for (auto* answer : byName) {
        auto id = displayIdentifier(answer->identity);
        while (!taken.insert(id).second)
            ++id;
        answer->monitor.id = id;
    }
}

bool isSame(const Monitor& a, const Monitor& b) {
    return a.id == b.id && a.name == b.name && a.isMain == b.isMain &&
           a.rectangle.x == b.rectangle.x && a.rectangle.y == b.rectangle.y &&
           a.rectangle.width == b.rectangle.width && a.rectangle.height == b.rectangle.height;
}

} // namespace

DisplayID displayIdentifier(std::string_view identity) {
    constexpr std::uint32_t offsetBasis = 2166136261U;
    constexpr std::uint32_t prime = 16777619U;
    std::uint32_t hash = offsetBasis;
    for (const char character : identity)
        hash = (hash ^ static_cast<std::uint8_t>(character)) * prime;
    return hash;
}

std::vector<Monitor> readMonitors(Connection& connection) {
    std::vector<MonitorAnswer> answers;
    for (const auto& question : ask(connection))
        answers.push_back(hear(connection, question));
    makeNamesUnique(answers);
    giveIdentifiers(answers);

    std::vector<Monitor> monitors;
    monitors.reserve(answers.size());
    for (auto& answer : answers)
        monitors.push_back(std::move(answer.monitor));
    const auto main = std::ranges::find_if(monitors, &Monitor::isMain);
    if (main != monitors.end())
        std::rotate(monitors.begin(), main, main + 1);
    for (auto& monitor : monitors)
        monitor.isMain = &monitor == &monitors.front();
    return monitors;
}

MonitorLayout::MonitorLayout(Connection& connection)
    : m_connection(connection)
    , m_structure(connection, XCB_EVENT_MASK_STRUCTURE_NOTIFY) {
    m_events =
        connection.events.subscribe([this](const xcb_generic_event_t& event) { handle(event); });
    m_drained = connection.eventsDrained.subscribe([this] {
        if (m_isStale)
            refresh();
    });
    m_lost = connection.lost.subscribe([this] { refresh(); });
    m_opened = connection.opened.subscribe([this] {
        listen();
        refresh();
    });
    if (!connection.isOpen())
        return;
    listen();
    m_monitors = readMonitors(connection);
}

const Monitor* MonitorLayout::find(DisplayID display) const {
    const auto found = std::ranges::find(m_monitors, display, &Monitor::id);
    return found == m_monitors.end() ? nullptr : &*found;
}

void MonitorLayout::listen() {
    // The mask is one for all of the connection and never taken back: others may need it too.
    xcb_randr_select_input(m_connection.get(), m_connection.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY |
                               XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
    m_connection.flush();
}

void MonitorLayout::handle(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7F;
    const auto randr = m_connection.extensions().randrFirstEvent;
    if (type == randr + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == randr + XCB_RANDR_NOTIFY)
        m_isStale = true;
    if (type == XCB_CONFIGURE_NOTIFY &&
        reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == m_connection.root())
        m_isStale = true;
}

void MonitorLayout::refresh() {
    m_isStale = false;
    auto monitors = m_connection.isOpen() ? readMonitors(m_connection) : std::vector<Monitor>();
    if (std::ranges::equal(monitors, m_monitors, isSame))
        return;
    m_monitors = std::move(monitors);
    changed.emit();
}

} // namespace kestrove::x11
