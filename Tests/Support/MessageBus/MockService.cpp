#include "Tests/Support/MessageBus/MockService.h"

#include "Tests/Support/Processes/Waiting.h"

#include <algorithm>
#include <systemd/sd-bus.h>
#include <utility>

namespace kestrove::test {

namespace {

void demand(int done, const char* what) {
    if (done < 0)
        giveUp(std::string("mock of a D-Bus service: ") + what);
}

constexpr const char* sessionPath = "/org/freedesktop/login1/session/_31";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";

int getSession(sd_bus_message* message, void* /*data*/, sd_bus_error* /*error*/) {
    return sd_bus_reply_method_return(message, "o", sessionPath);
}

int readActive(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
               const char* /*property*/, sd_bus_message* reply, void* data,
               sd_bus_error* /*error*/) {
    const int value = static_cast<MockLogind::State*>(data)->isActive ? 1 : 0;
    return sd_bus_message_append(reply, "b", value);
}

int readLockedHint(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
                   const char* /*property*/, sd_bus_message* reply, void* data,
                   sd_bus_error* /*error*/) {
    const int value = static_cast<MockLogind::State*>(data)->hasLockedHint ? 1 : 0;
    return sd_bus_message_append(reply, "b", value);
}

int getActive(sd_bus_message* message, void* data, sd_bus_error* /*error*/) {
    auto* const saver = static_cast<MockScreenSaver*>(data);
    ++saver->questionCount;
    const int value = saver->isActive ? 1 : 0;
    return sd_bus_reply_method_return(message, "b", value);
}

const sd_bus_vtable managerTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetSession", "s", "o", getSession, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("PrepareForSleep", "b", 0), SD_BUS_VTABLE_END};

const sd_bus_vtable sessionTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Active", "b", readActive, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("LockedHint", "b", readLockedHint, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_SIGNAL("Lock", "", 0),
    SD_BUS_SIGNAL("Unlock", "", 0),
    SD_BUS_VTABLE_END};

const sd_bus_vtable screenSaverTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetActive", "", "b", getActive, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("ActiveChanged", "b", 0), SD_BUS_VTABLE_END};

} // namespace

MockService::MockService(const PrivateBus& bus, DescriptorWatching& watching,
                         const std::string& name) {
    demand(sd_bus_new(&m_bus), "no connection");
    demand(sd_bus_set_address(m_bus, bus.address().c_str()), "its address");
    demand(sd_bus_set_bus_client(m_bus, 1), "a client");
    demand(sd_bus_start(m_bus), "its start");
    demand(sd_bus_request_name(m_bus, name.c_str(), 0), "its name");
    m_readable = watching.watchReadable(sd_bus_get_fd(m_bus), [this] { serve(); });
}

void MockService::serve() {
    int processed = 0;
    do {
        processed = sd_bus_process(m_bus, nullptr);
    } while (processed > 0);
    if (processed < 0) // the bus has gone
        m_readable = {};
}

MockService::~MockService() {
    m_readable = {};
    sd_bus_flush_close_unref(m_bus);
}

void MockService::flush() const {
    demand(sd_bus_flush(m_bus), "it cannot send");
}

MockLogind::MockLogind(const PrivateBus& bus, DescriptorWatching& watching)
    : MockLogind(bus, watching, State()) {}

MockLogind::MockLogind(const PrivateBus& bus, DescriptorWatching& watching, State initial)
    : MockService(bus, watching, "org.freedesktop.login1")
    , state(initial) {
    demand(sd_bus_add_object_vtable(this->bus(), nullptr, managerPath, managerInterface,
                                    managerTable, &state),
           "the manager");
    demand(sd_bus_add_object_vtable(this->bus(), nullptr, sessionPath, sessionInterface,
                                    sessionTable, &state),
           "the session");
    serve();
}

void MockLogind::tellChanged(const char* property) {
    demand(sd_bus_emit_properties_changed(bus(), sessionPath, sessionInterface, property, nullptr),
           "a changed property");
    flush();
}

void MockLogind::setActive(bool isActive) {
    state.isActive = isActive;
    tellChanged("Active");
}

void MockLogind::setLockedHint(bool isLocked) {
    state.hasLockedHint = isLocked;
    tellChanged("LockedHint");
}

void MockLogind::sendLock() {
    demand(sd_bus_emit_signal(bus(), sessionPath, sessionInterface, "Lock", ""), "Lock");
    flush();
}

void MockLogind::sendUnlock() {
    demand(sd_bus_emit_signal(bus(), sessionPath, sessionInterface, "Unlock", ""), "Unlock");
    flush();
}

void MockLogind::sendPrepareForSleep(bool begins) {
    demand(sd_bus_emit_signal(bus(), managerPath, managerInterface, "PrepareForSleep", "b",
                              begins ? 1 : 0),
           "PrepareForSleep");
    flush();
}

MockScreenSaver::MockScreenSaver(const PrivateBus& bus, DescriptorWatching& watching,
                                 std::string name, bool startsActive)
    : MockService(bus, watching, name)
    , isActive(startsActive)
    , m_name(std::move(name))
    , m_path("/" + m_name) {
    std::ranges::replace(m_path, '.', '/');
    demand(sd_bus_add_object_vtable(this->bus(), nullptr, m_path.c_str(), m_name.c_str(),
                                    screenSaverTable, this),
           "the screen saver");
    serve();
}

void MockScreenSaver::setActive(bool active) {
    isActive = active;
    demand(sd_bus_emit_signal(bus(), m_path.c_str(), m_name.c_str(), "ActiveChanged", "b",
                              active ? 1 : 0),
           "ActiveChanged");
    flush();
}

} // namespace kestrove::test
