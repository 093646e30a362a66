#include "Tests/X11/Application/NotifierHost.h"

#include "Tests/Support/Processes/Waiting.h"

#include <algorithm>
#include <string_view>
#include <systemd/sd-bus.h>

namespace kestrove::test {

namespace {

constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
constexpr const char* itemPath = "/StatusNotifierItem";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* menuPath = "/MenuBar";
constexpr const char* menuInterface = "com.canonical.dbusmenu";

void demand(int done, const char* what) {
    if (done < 0)
        giveUp(std::string("a tray on D-Bus: ") + what);
}

int ignore(sd_bus_message* message, void* /*data*/, sd_bus_error* /*error*/) {
    return sd_bus_reply_method_return(message, "");
}

int readIsHostRegistered(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
                         const char* /*property*/, sd_bus_message* reply, void* /*data*/,
                         sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "b", 1);
}

int readProtocolVersion(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
                        const char* /*property*/, sd_bus_message* reply, void* /*data*/,
                        sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "i", 0);
}

/// Of a path or a name on the bus, which items may register alike, the name.
int rememberItem(sd_bus_message* message, void* data, sd_bus_error* /*error*/) {
    const char* service = nullptr;
    demand(sd_bus_message_read(message, "s", &service), "an icon that says not who it is");
    auto& item = *static_cast<std::string*>(data);
    item = service[0] == '/' ? sd_bus_message_get_sender(message) : service;
    return sd_bus_reply_method_return(message, "");
}

const sd_bus_vtable watcherTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", rememberItem, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("RegisterStatusNotifierHost", "s", "", ignore, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", readIsHostRegistered, 0, 0),
    SD_BUS_PROPERTY("ProtocolVersion", "i", readProtocolVersion, 0, 0),
    SD_BUS_SIGNAL("StatusNotifierItemRegistered", "s", 0),
    SD_BUS_SIGNAL("StatusNotifierHostRegistered", "", 0),
    SD_BUS_VTABLE_END};

/// What stands in the {sv} of an entry of the menu.
void readEntryProperty(sd_bus_message* message, NotifierHost::Entry& entry) {
    const char* name = nullptr;
    demand(sd_bus_message_read(message, "s", &name), "a property's name");
    const std::string_view property(name);
    if (property == "label") {
        const char* label = nullptr;
        demand(sd_bus_message_read(message, "v", "s", &label), "a label");
        entry.label = label;
        std::erase(entry.label, '_'); // before the letter that is underlined
    } else if (property == "enabled") {
        int isEnabled = 0;
        demand(sd_bus_message_read(message, "v", "b", &isEnabled), "whether it can be clicked");
        entry.isEnabled = isEnabled != 0;
    } else if (property == "toggle-state") {
        int state = 0;
        demand(sd_bus_message_read(message, "v", "i", &state), "its tick");
        entry.isChecked = state == 1;
    } else {
        demand(sd_bus_message_skip(message, "v"), "another property");
    }
}

NotifierHost::Entry readEntry(sd_bus_message* message) {
    NotifierHost::Entry entry;
    demand(sd_bus_message_enter_container(message, 'v', "(ia{sv}av)"), "an entry");
    demand(sd_bus_message_enter_container(message, 'r', "ia{sv}av"), "an entry");
    demand(sd_bus_message_read(message, "i", &entry.id), "its number");
    demand(sd_bus_message_enter_container(message, 'a', "{sv}"), "its properties");
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        readEntryProperty(message, entry);
        demand(sd_bus_message_exit_container(message), "a property");
    }
    demand(sd_bus_message_exit_container(message), "its properties");
    demand(sd_bus_message_skip(message, "av"), "what lies below it");
    demand(sd_bus_message_exit_container(message), "an entry");
    demand(sd_bus_message_exit_container(message), "an entry");
    return entry;
}

} // namespace

struct NotifierHost::Release {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

NotifierHost::NotifierHost(const std::string& busAddress) {
    demand(sd_bus_new(&m_bus), "no connection");
    demand(sd_bus_set_address(m_bus, busAddress.c_str()), "its address");
    demand(sd_bus_set_bus_client(m_bus, 1), "a client");
    demand(sd_bus_start(m_bus), "its start");
    demand(
        sd_bus_add_object_vtable(m_bus, nullptr, watcherPath, watcherName, watcherTable, &m_item),
        "its object");
    demand(sd_bus_request_name(m_bus, watcherName, 0), "its name");
    demand(sd_bus_request_name(m_bus, "org.kde.StatusNotifierHost-1", 0), "the host's name");
}

NotifierHost::~NotifierHost() {
    sd_bus_flush_close_unref(m_bus);
}

void NotifierHost::serve() {
    while (sd_bus_process(m_bus, nullptr) > 0) {
    }
}

bool NotifierHost::hasIcon() {
    return waitUntil([this] {
        serve();
        return !m_item.empty();
    });
}

NotifierHost::Message NotifierHost::call(sd_bus_message* request) {
    const Message owned(request);
    sd_bus_message* reply = nullptr;
    sd_bus_error error{};
    if (sd_bus_call(m_bus, request, 0, &error, &reply) < 0)
        giveUp(std::string("the icon does not answer: ") + (error.message ? error.message : ""));
    return Message(reply);
}

NotifierHost::Message NotifierHost::readProperty(const char* name) {
    sd_bus_message* request = nullptr;
    demand(sd_bus_message_new_method_call(m_bus, &request, m_item.c_str(), itemPath,
                                          "org.freedesktop.DBus.Properties", "Get"),
           "a question");
    demand(sd_bus_message_append(request, "ss", itemInterface, name), "a question");
    return call(request);
}

std::string NotifierHost::property(const char* name) {
    const auto reply = readProperty(name);
    const char* text = nullptr;
    char type = 0;
    const char* contents = nullptr;
    demand(sd_bus_message_peek_type(reply.get(), &type, &contents), "an answer");
    demand(sd_bus_message_read(reply.get(), "v", contents, &text), "a text");
    return text;
}

int NotifierHost::pictureWidth() {
    const auto reply = readProperty("IconPixmap");
    demand(sd_bus_message_enter_container(reply.get(), 'v', "a(iiay)"), "its pictures");
    demand(sd_bus_message_enter_container(reply.get(), 'a', "(iiay)"), "its pictures");
    int largest = 0;
    while (sd_bus_message_enter_container(reply.get(), 'r', "iiay") > 0) {
        int width = 0;
        int height = 0;
        demand(sd_bus_message_read(reply.get(), "ii", &width, &height), "a picture's size");
        demand(sd_bus_message_skip(reply.get(), "ay"), "a picture");
        demand(sd_bus_message_exit_container(reply.get()), "a picture");
        largest = std::max(largest, width);
    }
    return largest;
}

void NotifierHost::activate(int x, int y) {
    sd_bus_message* request = nullptr;
    demand(sd_bus_message_new_method_call(m_bus, &request, m_item.c_str(), itemPath, itemInterface,
                                          "Activate"),
           "a click");
    demand(sd_bus_message_append(request, "ii", x, y), "a click");
    (void)call(request);
}

std::vector<NotifierHost::Entry> NotifierHost::menu() {
    sd_bus_message* request = nullptr;
    demand(sd_bus_message_new_method_call(m_bus, &request, m_item.c_str(), menuPath, menuInterface,
                                          "GetLayout"),
           "a question");
    demand(sd_bus_message_append(request, "iias", 0, 1, 0), "a question");
    const auto reply = call(request);
    auto* const message = reply.get();
    demand(sd_bus_message_skip(message, "u"), "the menu's revision");
    demand(sd_bus_message_enter_container(message, 'r', "ia{sv}av"), "the menu");
    demand(sd_bus_message_skip(message, "ia{sv}"), "the menu itself");
    demand(sd_bus_message_enter_container(message, 'a', "v"), "its entries");
    std::vector<Entry> entries;
    while (sd_bus_message_at_end(message, 0) == 0)
        entries.push_back(readEntry(message));
    return entries;
}

bool NotifierHost::click(const std::string& start) {
    const auto entries = menu();
    const auto found = std::ranges::find_if(entries, [&start](const Entry& entry) {
        return entry.isEnabled && entry.label.starts_with(start);
    });
    if (found == entries.end())
        return false;
    sd_bus_message* request = nullptr;
    demand(sd_bus_message_new_method_call(m_bus, &request, m_item.c_str(), menuPath, menuInterface,
                                          "Event"),
           "a click");
    demand(sd_bus_message_append(request, "isvu", found->id, "clicked", "i", 0, 0U), "a click");
    (void)call(request);
    return true;
}

} // namespace kestrove::test
