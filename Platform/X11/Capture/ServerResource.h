#pragma once

#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Connection.h"

#include <memory>
#include <utility>
#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/render.h>
#include <xcb/xfixes.h>

namespace kestrove::x11 {

/// Something that lives in the X server under an identifier of ours and is freed with this handle.
/// A handle that outlives its connection (the server freed everything with it) frees nothing.
template <auto Free>
class ServerResource {
public:
    ServerResource() = default;
    /// `identifier` was generated for, and used in, a creation request on this connection.
    ServerResource(Connection& connection, std::uint32_t identifier)
        : m_connection(connection.get())
        , m_lifetime(connection.lifetime())
        , m_identifier(identifier) {}
    ServerResource(ServerResource&& other) noexcept { swap(other); }
    ServerResource& operator=(ServerResource&& other) noexcept {
        ServerResource(std::move(other)).swap(*this);
        return *this;
    }
    ServerResource(const ServerResource&) = delete;
    ServerResource& operator=(const ServerResource&) = delete;
    ~ServerResource() {
        if (m_identifier != 0 && !m_lifetime.expired())
            Free(m_connection, m_identifier);
    }

    [[nodiscard]] std::uint32_t get() const { return m_identifier; }
    explicit operator bool() const { return m_identifier != 0 && !m_lifetime.expired(); }
    void reset() { *this = ServerResource(); }

private:
    void swap(ServerResource& other) noexcept {
        std::swap(m_connection, other.m_connection);
        std::swap(m_lifetime, other.m_lifetime);
        std::swap(m_identifier, other.m_identifier);
    }

    xcb_connection_t* m_connection = nullptr;
    std::weak_ptr<const void> m_lifetime;
    std::uint32_t m_identifier = 0;
};

using Pixmap = ServerResource<&xcb_free_pixmap>;
using Picture = ServerResource<&xcb_render_free_picture>;
using GraphicsContext = ServerResource<&xcb_free_gc>;
using DamageMonitor = ServerResource<&xcb_damage_destroy>;
using ServerRegion = ServerResource<&xcb_xfixes_destroy_region>;
using Window = ServerResource<&xcb_destroy_window>;
using Colormap = ServerResource<&xcb_free_colormap>;

} // namespace kestrove::x11
