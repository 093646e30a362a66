#include "Tests/Support/SessionManager/SessionManager.h"

#include "Tests/Support/Processes/Waiting.h"

#include <array>
#include <cstdlib>
#include <map>
#include <poll.h>
#include <string_view>

#include <X11/SM/SMlib.h>

// Of libICE, which declares it nowhere.
extern "C" int _IceTransNoListen(const char* protocol);

namespace kestrove::test {

struct SessionManager::State {
    int listenerCount = 0;
    IceListenObj* listeners = nullptr;
    std::vector<IceConn> connections;
    SmsConn program = nullptr;
    int savedCount = 0;
    std::map<std::string, std::vector<std::string>> properties;

    static State& of(SmPointer state) { return *static_cast<State*>(state); }
    [[nodiscard]] SmsCallbacks callbacks();

    // What the program says.
    static Status onConnected(SmsConn program, SmPointer state, unsigned long* mask,
                              SmsCallbacks* callbacks, char** failure);
    static Status onRegistered(SmsConn program, SmPointer state, char* previous);
    static void onSaved(SmsConn program, SmPointer state, Bool isSaved);
    static void onClosed(SmsConn program, SmPointer state, int count, char** reasons);
    static void onPropertiesSet(SmsConn program, SmPointer state, int count, SmProp** properties);
    static void onPropertiesDeleted(SmsConn program, SmPointer state, int count, char** names);
};

namespace {

/// Whoever can reach the socket may register: it is a test's own.
Bool admitEverybody(char* /*host*/) {
    return True;
}

bool isReadable(int descriptor) {
    pollfd asked{.fd = descriptor, .events = POLLIN, .revents = 0};
    return poll(&asked, 1, 0) > 0;
}

std::string textOf(const SmPropValue& value) {
    return {static_cast<const char*>(value.value), static_cast<std::size_t>(value.length)};
}

} // namespace

Status SessionManager::State::onConnected(SmsConn /*program*/, SmPointer state, unsigned long* mask,
                                          SmsCallbacks* callbacks, char** /*failure*/) {
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
            SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
            SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    *callbacks = of(state).callbacks();
    return True;
}

SmsCallbacks SessionManager::State::callbacks() {
    SmsCallbacks all{};
    all.register_client = {onRegistered, this};
    all.interact_request = {[](SmsConn asking, SmPointer, int) { SmsInteract(asking); }, this};
    all.interact_done = {[](SmsConn, SmPointer, Bool) {}, this};
    all.save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {}, this};
    all.save_yourself_phase2_request = {
        [](SmsConn asking, SmPointer) { SmsSaveYourselfPhase2(asking); }, this};
    all.save_yourself_done = {onSaved, this};
    all.close_connection = {onClosed, this};
    all.set_properties = {onPropertiesSet, this};
    all.delete_properties = {onPropertiesDeleted, this};
    all.get_properties = {
        [](SmsConn asking, SmPointer) { SmsReturnProperties(asking, 0, nullptr); }, this};
    return all;
}

Status SessionManager::State::onRegistered(SmsConn program, SmPointer state, char* previous) {
    if (previous) {
        // Nobody comes back from an earlier session.
        std::free(previous);
        return False;
    }
    auto* const identifier = SmsGenerateClientID(program);
    SmsRegisterClientReply(program, identifier);
    std::free(identifier);
    // A new program saves at once what the manager has to know of it.
    SmsSaveYourself(program, SmSaveLocal, False, SmInteractStyleNone, False);
    of(state).program = program;
    return True;
}

void SessionManager::State::onSaved(SmsConn program, SmPointer state, Bool isSaved) {
    auto& self = of(state);
    self.savedCount += isSaved ? 1 : 0;
    if (self.savedCount == 1)
        SmsSaveComplete(program); // of the first time, which is no end of the session
}

void SessionManager::State::onClosed(SmsConn program, SmPointer state, int count, char** reasons) {
    SmFreeReasons(count, reasons);
    of(state).program = nullptr;
    SmsCleanUp(program);
}

void SessionManager::State::onPropertiesSet(SmsConn /*program*/, SmPointer state, int count,
                                            SmProp** properties) {
    for (int each = 0; each < count; ++each) {
        auto* const property = properties[each];
        auto& words = of(state).properties[property->name];
        words.clear();
        for (int word = 0; word < property->num_vals; ++word)
            words.push_back(textOf(property->vals[word]));
        SmFreeProperty(property);
    }
    std::free(properties);
}

void SessionManager::State::onPropertiesDeleted(SmsConn /*program*/, SmPointer state, int count,
                                                char** names) {
    for (int each = 0; each < count; ++each) {
        of(state).properties.erase(names[each]);
        std::free(names[each]);
    }
    std::free(names);
}

SessionManager::SessionManager()
    : m_state(std::make_unique<State>()) {
    std::array<char, 256> error{};
    const auto length = static_cast<int>(error.size());
    _IceTransNoListen("tcp");
    if (SmsInitialize("Kestrove", "test", State::onConnected, m_state.get(), admitEverybody, length,
                      error.data()) == 0 ||
        IceListenForConnections(&m_state->listenerCount, &m_state->listeners, length,
                                error.data()) == 0)
        giveUp(error.data());
    for (int each = 0; each < m_state->listenerCount; ++each)
        IceSetHostBasedAuthProc(m_state->listeners[each], admitEverybody);
    // The library's own handler ends the program when another one has gone.
    IceSetIOErrorHandler([](IceConn) {});
}

SessionManager::~SessionManager() {
    for (auto* const each : m_state->connections) {
        IceSetShutdownNegotiation(each, False);
        IceCloseConnection(each);
    }
    IceFreeListenObjs(m_state->listenerCount, m_state->listeners);
}

std::string SessionManager::environment() const {
    auto* const address = IceComposeNetworkIdList(m_state->listenerCount, m_state->listeners);
    const auto result = std::string("SESSION_MANAGER=") + address;
    std::free(address);
    return result;
}

void SessionManager::serve() {
    for (int each = 0; each < m_state->listenerCount; ++each) {
        if (!isReadable(IceGetListenConnectionNumber(m_state->listeners[each])))
            continue;
        IceAcceptStatus status{};
        if (auto* const connection = IceAcceptConnection(m_state->listeners[each], &status))
            m_state->connections.push_back(connection);
    }
    std::erase_if(m_state->connections, [this](IceConn connection) {
        while (isReadable(IceConnectionNumber(connection))) {
            const auto status = IceProcessMessages(connection, nullptr, nullptr);
            if (status == IceProcessMessagesSuccess)
                continue;
            m_state->program = nullptr; // there is one at a time
            if (status == IceProcessMessagesIOError) {
                IceSetShutdownNegotiation(connection, False);
                IceCloseConnection(connection);
            }
            return true;
        }
        return false;
    });
}

bool SessionManager::hasProgram() const {
    return m_state->program != nullptr;
}

int SessionManager::savedCount() const {
    return m_state->savedCount;
}

std::vector<std::string> SessionManager::property(const std::string& name) const {
    const auto found = m_state->properties.find(name);
    return found == m_state->properties.end() ? std::vector<std::string>() : found->second;
}

void SessionManager::endSession() {
    SmsSaveYourself(m_state->program, SmSaveBoth, True, SmInteractStyleAny, False);
}

void SessionManager::cancelEnd() {
    SmsShutdownCancelled(m_state->program);
}

void SessionManager::die() {
    SmsDie(m_state->program);
}

} // namespace kestrove::test
