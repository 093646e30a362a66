#include "Platform/X11/Capture/PictureFormats.h"

namespace kestrove::x11 {
namespace {

bool hasEightBitColours(const xcb_render_directformat_t& direct) {
    return direct.red_mask == 0xFF && direct.green_mask == 0xFF && direct.blue_mask == 0xFF &&
           direct.red_shift == 16 && direct.green_shift == 8 && direct.blue_shift == 0;
}

} // namespace

PictureFormats::PictureFormats(Connection& connection) {
    const auto answer = connection.reply(xcb_render_query_pict_formats_reply,
                                         xcb_render_query_pict_formats(connection.get()));
    if (!answer)
        return;
    std::map<xcb_render_pictformat_t, Format> formats;
    for (auto each = xcb_render_query_pict_formats_formats_iterator(answer.get()); each.rem > 0;
         xcb_render_pictforminfo_next(&each)) {
        const auto& info = *each.data;
        if (info.type != XCB_RENDER_PICT_TYPE_DIRECT)
            continue;
        formats[info.id] = {info.id, info.depth, info.direct.alpha_mask != 0};
        if (!hasEightBitColours(info.direct))
            continue;
        if (info.depth == 24 && info.direct.alpha_mask == 0)
            m_rgb24 = info.id;
        if (info.depth == 32 && info.direct.alpha_mask == 0xFF)
            m_argb32 = info.id;
    }
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(answer.get()); screen.rem > 0;
         xcb_render_pictscreen_next(&screen)) {
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem > 0;
             xcb_render_pictdepth_next(&depth)) {
            for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem > 0;
                 xcb_render_pictvisual_next(&visual)) {
                const auto known = formats.find(visual.data->format);
                if (known == formats.end())
                    continue;
                m_byVisual[visual.data->visual] = known->second;
                if (known->first == m_argb32 && m_argb32Visual == XCB_NONE)
                    m_argb32Visual = visual.data->visual;
            }
        }
    }
}

std::optional<PictureFormats::Format> PictureFormats::ofVisual(xcb_visualid_t visual) const {
    const auto known = m_byVisual.find(visual);
    return known == m_byVisual.end() ? std::nullopt : std::optional(known->second);
}

} // namespace kestrove::x11
