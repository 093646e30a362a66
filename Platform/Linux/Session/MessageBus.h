#pragma once

#include "Async/MainLoop.h"
#include "Async/Signal.h"
#include "Async/Timer.h"
#include "Desktop/PlatformError.h"
#include "Platform/Linux/DescriptorWatching.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sd_bus;
struct sd_bus_message;

namespace kestrove {

/// A message on the bus while it is being handled; arguments are read one after the other.
class BusMessage {
public:
    explicit BusMessage(sd_bus_message* message)
        : m_message(message) {}

    /// Absent when there is none of the type where the reading stands.
    [[nodiscard]] std::optional<bool> readBoolean();
    /// A boolean in a variant, as properties are told.
    [[nodiscard]] std::optional<bool> readBooleanVariant();
    /// A string or an object path.
    [[nodiscard]] std::optional<std::string> readText();

private:
    sd_bus_message* m_message;
};

/// A connection to a D-Bus bus, driven by the main loop: nothing here waits for an answer.
///
/// Thread: main. Callbacks come from the main loop. Destroying it forgets every handler.
class MessageBus {
public:
    enum class Kind { system, session };
    using SignalHandler = std::function<void(BusMessage&)>;
    /// Absent: the call failed.
    using ReplyHandler = std::function<void(std::optional<BusMessage>)>;

    /// Where the environment says that the bus is.
    static std::expected<std::unique_ptr<MessageBus>, PlatformError>
    open(Kind kind, MainLoop& loop, DescriptorWatching& watching);
    ~MessageBus();
    MessageBus(const MessageBus&) = delete;
    MessageBus& operator=(const MessageBus&) = delete;

    /// Calls `handler` for every signal that the match rule lets through.
    void subscribe(const std::string& matchRule, SignalHandler handler);

    struct Method {
        std::string destination;
        std::string path;
        std::string interface;
        std::string member;
    };
    /// With those texts as its arguments. A service that does not run is not started for it.
    void call(const Method& method, const std::vector<std::string>& arguments,
              ReplyHandler handler);

    /// The bus has gone; nothing comes any more.
    Signal<> lost;

private:
    struct Handler;

    MessageBus(sd_bus* bus, MainLoop& loop, DescriptorWatching& watching);
    void process();
    void processSoon(Seconds delay);

    sd_bus* m_bus;
    MainLoop& m_loop;
    bool m_isLost = false;
    std::vector<std::unique_ptr<Handler>> m_handlers;
    Subscription m_readable;
    Timer m_processing;
};

} // namespace kestrove
