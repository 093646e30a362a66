#pragma once

#include "Async/Subscription.h"
#include "Platform/X11/Connection.h"

#include <functional>

namespace kestrove::x11 {

/// Tells that windows may have come, gone, moved, or been restacked, or that another workspace is
/// shown: once for all events that had arrived, from the main loop. The server is asked to tell
/// only as long as the subscription lives. What programs draw is not among it.
///
/// Thread: main. The connection outlives the subscription.
[[nodiscard]] Subscription watchWindowChanges(Connection& connection,
                                              std::function<void()> callback);

} // namespace kestrove::x11
