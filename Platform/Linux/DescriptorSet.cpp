#include "Platform/Linux/DescriptorSet.h"

#include <sys/epoll.h>
#include <unistd.h>
#include <utility>

namespace kestrove {

DescriptorSet::DescriptorSet(DescriptorWatching& watching)
    : m_watching(watching)
    , m_set(epoll_create1(EPOLL_CLOEXEC)) {
    if (m_set >= 0)
        m_anyReadable = watching.watchReadable(m_set, [this] { tell(); });
}

DescriptorSet::~DescriptorSet() {
    m_anyReadable.cancel();
    if (m_set >= 0)
        close(m_set);
}

Subscription DescriptorSet::watchReadable(int descriptor, std::function<void()> ready) {
    if (!take(descriptor))
        return m_watching.watchReadable(descriptor, std::move(ready));
    auto subscription = m_readable[descriptor].subscribe([told = std::move(ready)] { told(); });
    return Subscription([this, descriptor, watch = std::move(subscription)]() mutable {
        watch.cancel();
        letGo(descriptor);
    });
}

bool DescriptorSet::take(int descriptor) {
    if (m_readable.contains(descriptor))
        return true;
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    return m_set >= 0 && epoll_ctl(m_set, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

void DescriptorSet::letGo(int descriptor) {
    const auto found = m_readable.find(descriptor);
    if (found == m_readable.end() || found->second.hasSubscribers())
        return;
    m_readable.erase(found);
    epoll_ctl(m_set, EPOLL_CTL_DEL, descriptor, nullptr);
}

void DescriptorSet::tell() {
    // One a turn: what is told may let go of others, and their numbers come back with others.
    epoll_event event{};
    if (epoll_wait(m_set, &event, 1, 0) != 1)
        return;
    if (const auto found = m_readable.find(event.data.fd); found != m_readable.end())
        found->second.emit();
}

} // namespace kestrove
