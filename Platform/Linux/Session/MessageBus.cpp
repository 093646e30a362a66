#include "Platform/Linux/Session/MessageBus.h"

#include <algorithm>
#include <cstring>
#include <poll.h>
#include <systemd/sd-bus.h>
#include <utility>

namespace kestrove {

namespace {

/// How long what the socket did not take waits for the next attempt. Our messages are few and
/// small: it takes them, as a rule, at once.
constexpr Seconds retryInterval{0.02};

PlatformError busError(int negativeErrno) {
    return {"D-Bus", -negativeErrno, std::strerror(-negativeErrno)};
}

} // namespace

std::optional<bool> BusMessage::readBoolean() {
    int value = 0;
    if (sd_bus_message_read(m_message, "b", &value) <= 0)
        return std::nullopt;
    return value != 0;
}

std::optional<bool> BusMessage::readBooleanVariant() {
    int value = 0;
    if (sd_bus_message_read(m_message, "v", "b", &value) <= 0)
        return std::nullopt;
    return value != 0;
}

std::optional<std::string> BusMessage::readText() {
    char type = 0;
    const char* text = nullptr;
    if (sd_bus_message_peek_type(m_message, &type, nullptr) <= 0 ||
        (type != SD_BUS_TYPE_STRING && type != SD_BUS_TYPE_OBJECT_PATH) ||
        sd_bus_message_read_basic(m_message, type, &text) <= 0)
        return std::nullopt;
    return text;
}

/// What a slot of the bus calls. It lives until the bus goes or, for a call, until its answer.
struct MessageBus::Handler {
    Handler() = default;
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;
    ~Handler() { sd_bus_slot_unref(slot); }

    static int signalArrived(sd_bus_message* message, void* data, sd_bus_error* /*error*/) {
        BusMessage reading(message);
        static_cast<Handler*>(data)->onSignal(reading);
        return 0;
    }
    static int replyArrived(sd_bus_message* message, void* data, sd_bus_error* /*error*/) {
        auto* const handler = static_cast<Handler*>(data);
        handler->isAnswered = true;
        const auto told = std::move(handler->onReply);
        const bool failed = sd_bus_message_is_method_error(message, nullptr) != 0;
        told(failed ? std::nullopt : std::optional(BusMessage(message)));
        return 0;
    }

    SignalHandler onSignal;
    ReplyHandler onReply;
    sd_bus_slot* slot = nullptr;
    bool isAnswered = false;
};

std::expected<std::unique_ptr<MessageBus>, PlatformError>
MessageBus::open(Kind kind, MainLoop& loop, DescriptorWatching& watching) {
    sd_bus* bus = nullptr;
    const int opened = kind == Kind::system ? sd_bus_open_system(&bus) : sd_bus_open_user(&bus);
    if (opened < 0)
        return std::unexpected(busError(opened));
    return std::unique_ptr<MessageBus>(new MessageBus(bus, loop, watching));
}

MessageBus::MessageBus(sd_bus* bus, MainLoop& loop, DescriptorWatching& watching)
    : m_bus(bus)
    , m_loop(loop) {
    sd_bus_set_exit_on_disconnect(m_bus, 0);
    m_readable = watching.watchReadable(sd_bus_get_fd(m_bus), [this] { process(); });
    processSoon(Seconds(0));
}

MessageBus::~MessageBus() {
    m_readable = {};
    m_handlers.clear();
    sd_bus_close_unref(m_bus);
}

void MessageBus::subscribe(const std::string& matchRule, SignalHandler handler) {
    auto& added = *m_handlers.emplace_back(std::make_unique<Handler>());
    added.onSignal = std::move(handler);
    sd_bus_add_match_async(m_bus, &added.slot, matchRule.c_str(), &Handler::signalArrived, nullptr,
                           &added);
    processSoon(Seconds(0));
}

void MessageBus::call(const Method& method, const std::vector<std::string>& arguments,
                      ReplyHandler handler) {
    auto& added = *m_handlers.emplace_back(std::make_unique<Handler>());
    added.onReply = std::move(handler);
    sd_bus_message* message = nullptr;
    int done = sd_bus_message_new_method_call(m_bus, &message, method.destination.c_str(),
                                              method.path.c_str(), method.interface.c_str(),
                                              method.member.c_str());
    for (const auto& argument : arguments)
        if (done >= 0)
            done = sd_bus_message_append(message, "s", argument.c_str());
    if (done >= 0)
        done = sd_bus_message_set_auto_start(message, 0);
    if (done >= 0)
        done = sd_bus_call_async(m_bus, &added.slot, message, &Handler::replyArrived, &added, 0);
    sd_bus_message_unref(message);
    if (done < 0) {
        added.isAnswered = true;
        m_loop.post([told = std::move(added.onReply)] { told(std::nullopt); });
    }
    processSoon(Seconds(0));
}

void MessageBus::processSoon(Seconds delay) {
    m_processing = m_loop.runAfter(delay, [this] { process(); });
}

void MessageBus::process() {
    if (m_isLost)
        return;
    int processed = 0;
    do {
        processed = sd_bus_process(m_bus, nullptr);
    } while (processed > 0);
    std::erase_if(m_handlers, [](const auto& handler) { return handler->isAnswered; });
    if (processed < 0) {
        m_isLost = true;
        m_readable = {};
        m_processing = {};
        lost.emit();
        return;
    }
    if (sd_bus_get_events(m_bus) & POLLOUT)
        processSoon(retryInterval);
}

} // namespace kestrove
