#pragma once

#include "Desktop/ScreenRecordingAccess.h"
#include "Platform/X11/Connection.h"

namespace kestrove::x11 {

/// X asks nobody before a program reads the screen: whoever may connect may record. The permission
/// is therefore granted exactly while there is a connection, and asking for it tries to get one
/// back.
class ScreenRecordingAccess final : public kestrove::ScreenRecordingAccess {
public:
    explicit ScreenRecordingAccess(Connection& connection)
        : m_connection(connection) {}

    bool preflight() override { return m_connection.isOpen(); }
    bool request() override { return m_connection.reopen().has_value(); }
    /// Does nothing: a desktop on X has no page for a permission that it does not have.
    void openPreferences() override {}

private:
    Connection& m_connection;
};

} // namespace kestrove::x11
