#include "Platform/X11/Screens/WorkArea.h"

#include "Platform/X11/Properties.h"
#include "Platform/X11/Screens/Coordinates.h"
#include "Platform/X11/WindowIdentity/ClientList.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <optional>
#include <utility>

namespace kestrove::x11 {
namespace {

constexpr std::size_t wordsOfPartialStrut = 12;
constexpr std::size_t wordsOfStrut = 4;
constexpr std::size_t wordsOfArea = 4;

/// Absent when nothing is left.
std::optional<Rect> intersection(const Rect& a, const Rect& b) {
    const double left = std::max(a.minX(), b.minX());
    const double top = std::max(a.minY(), b.minY());
    const Rect common{left, top, std::min(a.maxX(), b.maxX()) - left,
                      std::min(a.maxY(), b.maxY()) - top};
    return common.width > 0 && common.height > 0 ? std::optional(common) : std::nullopt;
}

bool meets(const std::array<std::uint32_t, 2>& span, double start, double end) {
    return span[0] < end && span[1] >= start;
}

std::optional<Strut> strutOf(const std::vector<std::uint32_t>& words) {
    if (words.size() >= wordsOfPartialStrut)
        return Strut{words[0],
                     words[1],
                     words[2],
                     words[3],
                     {words[4], words[5]},
                     {words[6], words[7]},
                     {words[8], words[9]},
                     {words[10], words[11]}};
    constexpr std::array<std::uint32_t, 2> whole{0, std::numeric_limits<std::uint32_t>::max()};
    if (words.size() >= wordsOfStrut)
        return Strut{words[0], words[1], words[2], words[3], whole, whole, whole, whole};
    return std::nullopt;
}

std::vector<Strut> readStruts(Connection& connection) {
    struct Asked {
        xcb_get_property_cookie_t partial;
        xcb_get_property_cookie_t whole;
    };
    std::vector<Asked> asked;
    const auto clients = readClientList(connection).value_or(std::vector<ClientWindow>());
    asked.reserve(clients.size());
    for (const auto& client : clients)
        asked.push_back({askProperty(connection, client.window, "_NET_WM_STRUT_PARTIAL"),
                         askProperty(connection, client.window, "_NET_WM_STRUT")});
    std::vector<Strut> struts;
    for (const auto& [partial, whole] : asked) {
        const auto precise = strutOf(hearWords(connection, partial));
        const auto plain = strutOf(hearWords(connection, whole));
        if (precise || plain)
            struts.push_back(precise ? *precise : *plain);
    }
    return struts;
}

std::vector<Rect> areasOf(const std::vector<std::uint32_t>& words) {
    std::vector<Rect> areas;
    for (std::size_t i = 0; i + wordsOfArea <= words.size(); i += wordsOfArea)
        areas.push_back({static_cast<double>(words[i]), static_cast<double>(words[i + 1]),
                         static_cast<double>(words[i + 2]), static_cast<double>(words[i + 3])});
    return areas;
}

Size rootSize(Connection& connection) {
    const auto geometry = connection.reply(xcb_get_geometry_reply,
                                           xcb_get_geometry(connection.get(), connection.root()));
    if (!geometry)
        return {};
    return {static_cast<double>(geometry->width), static_cast<double>(geometry->height)};
}

std::size_t currentWorkspace(Connection& connection) {
    const auto words = rootWords(connection, "_NET_CURRENT_DESKTOP");
    return words.empty() ? 0 : words.front();
}

} // namespace

Rect areaWithoutStruts(const Rect& monitor, const Size& root, std::span<const Strut> struts) {
    double left = monitor.minX();
    double right = monitor.maxX();
    double top = monitor.minY();
    double bottom = monitor.maxY();
    const auto isInside = [](double edge, double start, double end) {
        return edge > start && edge < end;
    };
    for (const auto& strut : struts) {
        const double leftEdge = strut.left;
        const double rightEdge = root.width - strut.right;
        const double topEdge = strut.top;
        const double bottomEdge = root.height - strut.bottom;
        if (isInside(leftEdge, monitor.minX(), monitor.maxX()) &&
            meets(strut.leftSpan, monitor.minY(), monitor.maxY()))
            left = std::max(left, leftEdge);
        if (strut.right > 0 && isInside(rightEdge, monitor.minX(), monitor.maxX()) &&
            meets(strut.rightSpan, monitor.minY(), monitor.maxY()))
            right = std::min(right, rightEdge);
        if (isInside(topEdge, monitor.minY(), monitor.maxY()) &&
            meets(strut.topSpan, monitor.minX(), monitor.maxX()))
            top = std::max(top, topEdge);
        if (strut.bottom > 0 && isInside(bottomEdge, monitor.minY(), monitor.maxY()) &&
            meets(strut.bottomSpan, monitor.minX(), monitor.maxX()))
            bottom = std::min(bottom, bottomEdge);
    }
    // Panels that leave nothing are not believed.
    if (right <= left || bottom <= top)
        return monitor;
    return {left, top, right - left, bottom - top};
}

std::vector<Rect> readVisibleAreas(Connection& connection, std::span<const Monitor> monitors) {
    const auto workspace = currentWorkspace(connection);
    const auto perMonitor =
        areasOf(rootWords(connection, fmt::format("_GTK_WORKAREAS_D{}", workspace)));
    const auto struts = perMonitor.empty() ? readStruts(connection) : std::vector<Strut>();
    const auto root = rootSize(connection);
    std::vector<Rect> visible;
    for (const auto& monitor : monitors) {
        const auto frame = toRect(monitor.rectangle);
        auto area = areaWithoutStruts(frame, root, struts);
        for (const auto& told : perMonitor)
            area = frame.contains(told.center()) ? intersection(frame, told).value_or(area) : area;
        visible.push_back(area);
    }
    const auto all = areasOf(rootWords(connection, "_NET_WORKAREA"));
    if (visible.size() == 1 && workspace < all.size())
        visible.front() = intersection(visible.front(), all[workspace]).value_or(visible.front());
    return visible;
}

} // namespace kestrove::x11
